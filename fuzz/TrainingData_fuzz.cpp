#include "support/record_round_trip.h"
#include "trackers/SvmClassification/SvmClassifier.h"

/// Samples that are taken can be prepared for training, whatever their records hold.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::vector<unsigned char> first, second;
    recordRoundTrip<rksl::List<TrainingData>>(data, size, first, second);
    if (first != second)
        std::abort();
    rksl::List<TrainingData> samples;
    try {
        samples.fromBin(data, static_cast<unsigned int>(size));
        SvmClassifier classifier;
        classifier.setSVMStruct(samples, {1, 9, 10, 21, 57, 58, 61});
    } catch (rktl::Exception const&) {
    }
    return 0;
}
