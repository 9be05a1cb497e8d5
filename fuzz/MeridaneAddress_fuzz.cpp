#include "BaseClasses/MeridaneAddress.h"
#include "support/record_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    exactRecordRoundTrip<MeridaneAddress>(data, size);
    return 0;
}
