#include "support/record_round_trip.h"
#include "trackers/SvmClassification/ClassificationModel.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    exactRecordRoundTrip<ClassificationModel>(data, size);
    return 0;
}
