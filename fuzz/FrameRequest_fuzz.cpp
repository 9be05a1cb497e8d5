#include "Meridane/Subsystem/FrameRequest.h"
#include "support/record_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    exactRecordRoundTrip<FrameRequest>(data, size);
    return 0;
}
