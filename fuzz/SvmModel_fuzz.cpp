#include "image/rkil_MultiImage.h"
#include "support/record_round_trip.h"
#include "trackers/SvmClassification/SvmClassification.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <cstdlib>
#include <cstring>
#include <vector>

/// A machine that is taken can be asked about a picture, and is written as it was read. Twice the same one, which then hold their
/// support vectors together, answer the same as alone.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    exactRecordRoundTrip<SvmModel>(data, size);
    SvmModel machine;
    try {
        machine.fromBin(data, static_cast<unsigned int>(size));
    } catch (rktl::Exception const&) {
        return 0;
    }
    rkil::FlatImage<1> gray;
    gray.resize(8, 8, 3);
    rkil::MultiImage image(rkil::MultiImage::flatGray);
    image = *gray.getImage();
    SvmClassification stage;
    rksl::StringMap<rktl::Double> scores;
    std::vector<double> answers;
    for (char const* const name : {"A", "B"}) {
        if (!stage.setModel(ClassificationModel("SVM", name, machine, true)))
            return 0;
        stage.testImage(image, scores);
        for (auto const& [className, score] : scores)
            answers.push_back(score.value);
    }
    for (double const answer : answers)
        if (std::memcmp(&answer, &answers.front(), sizeof(answer)) != 0)
            std::abort();
    return 0;
}
