#include "image/rkil_MultiImage.h"
#include "support/record_round_trip.h"
#include "trackers/SvmClassification/SvmClassification.h"
#include "trackers/SvmClassification/SvmModel.h"

/// A machine that is taken can be asked about a picture, and is written as it was read.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    exactRecordRoundTrip<SvmModel>(data, size);
    SvmModel machine;
    try {
        machine.fromBin(data, static_cast<unsigned int>(size));
    } catch (rktl::Exception const&) {
        return 0;
    }
    SvmClassification stage;
    if (!stage.setModel(ClassificationModel("SVM", "A", machine, true)))
        return 0;
    rkil::FlatImage<1> gray;
    gray.resize(8, 8, 3);
    rkil::MultiImage image(rkil::MultiImage::flatGray);
    image = *gray.getImage();
    rksl::StringMap<rktl::Double> scores;
    stage.testImage(image, scores);
    return 0;
}
