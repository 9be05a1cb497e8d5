#include "trackers/ObjectTrackerLib/AdvancedFeatures.h"

#include "image/rk_image.h"
#include "math/rkml_ClipBox.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t binsPerChannel = 8;
constexpr float learningWeight = 0.15f;
constexpr unsigned char darkest = 16;        // a pixel with no channel above this has no colour to speak of
constexpr float leastSecondaryShare = 0.33f; // of the fullest bin
constexpr float leastHueDifference = 31.5f;  // degrees
constexpr char const* areaNames[] = {"Upper Color", "Lower Color", "Left Color", "Right Color", "Overall Color"};

rktl::String colourText(rkml::ColorHistogram const& histogram, uint32_t bin)
{
    uint32_t packed = 0;
    histogram.binToColor(bin, packed);
    return rktl::String::fromFormat("#%02x%02x%02x", packed & 255, packed >> 8 & 255, packed >> 16 & 255);
}

float hueOf(rkml::ColorHistogram const& histogram, uint32_t bin)
{
    float hue = 0, saturation = 0, value = 0;
    histogram.binToHSV(bin, hue, saturation, value);
    return hue;
}

/// The fullest bin of clearly another hue than the fullest of all; false when there is none that is full enough. Of bins that
/// are equally full the higher number comes first, and the very first one is left out.
bool secondaryBin(rkml::ColorHistogram const& histogram, uint32_t fullest, uint32_t& bin)
{
    float const most = static_cast<float>(histogram.getBinValue(fullest));
    float const hue = hueOf(histogram, fullest);
    uint32_t first = fullest;
    for (uint32_t i = fullest + 1; i < histogram.getBinCount(); ++i)
        if (histogram.getBinValue(i) == histogram.getBinValue(fullest))
            first = i;
    uint32_t best = 0;
    for (uint32_t i = 0; i < histogram.getBinCount(); ++i) {
        uint32_t const count = histogram.getBinValue(i);
        if (i == first || count < best || static_cast<float>(count) / most < leastSecondaryShare ||
            std::fabs(hueOf(histogram, i) - hue) <= leastHueDifference)
            continue;
        best = count;
        bin = i;
    }
    return best > 0;
}

} // namespace

void AdvancedFeatures::learnColours(
    rk_image const& colour, rk_image const* mask, rkml::BoundingBox<int> const& box, Object& object)
{
    rkml::BoundingBox<int> const area = rkml::clipBox(box, colour.width, colour.height);
    rkml::ColorHistogram fresh[areas];
    for (auto& histogram : fresh)
        histogram.ensureBins(binsPerChannel, binsPerChannel, binsPerChannel);
    for (int row = 0; row < area.height; ++row)
        for (int column = 0; column < area.width; ++column) {
            size_t const index = size_t(area.y + row) * colour.width + size_t(area.x + column);
            unsigned char const* const pixel = colour.data + 4 * index;
            if ((mask && !mask->data[index]) || (pixel[0] <= darkest && pixel[1] <= darkest && pixel[2] <= darkest))
                continue;
            fresh[row < area.height / 2 ? upper : lower].addColor(pixel[2], pixel[1], pixel[0], 1);
            fresh[column <= area.width / 2 ? left : right].addColor(pixel[2], pixel[1], pixel[0], 1);
            fresh[whole].addColor(pixel[2], pixel[1], pixel[0], 1);
        }
    if (!mHasColours)
        std::copy(fresh, fresh + areas, mHistograms);
    else if (object.getMergeListSize() == 0)
        for (int i = 0; i < areas; ++i)
            mHistograms[i].average(fresh[i], learningWeight);
    mHasColours = true;
    object.setHistogram(mHistograms[whole]);
    for (int i = 0; i < areas; ++i)
        fillColors(mHistograms[i], areaNames[i], object);
}

void AdvancedFeatures::fillColors(rkml::ColorHistogram const& histogram, rktl::String const& name, Object& object)
{
    uint32_t const fullest = histogram.getMaxBin();
    object.setAttribute(name, colourText(histogram, fullest));
    object.setAttribute(name + " Percentage", rktl::String::fromFloat(histogram.getValue(fullest), 6));
    rktl::String const secondary = name + " (Secondary)";
    uint32_t bin = 0;
    bool const isFound = histogram.getBinValue(fullest) > 0 && secondaryBin(histogram, fullest, bin);
    object.setAttribute(secondary, isFound ? colourText(histogram, bin) : rktl::String());
    object.setAttribute(
        secondary + " Percentage", isFound ? rktl::String::fromFloat(histogram.getValue(bin), 6) : rktl::String());
}

void AdvancedFeatures::learnUniformity(rk_image const& gray, rkml::BoundingBox<int> const& box, Object& object)
{
    rkml::BoundingBox<int> const area = rkml::clipBox(box, gray.width, gray.height);
    double const count = double(area.width) * area.height;
    if (count == 0)
        return;
    double sum = 0, squares = 0;
    for (int row = 0; row < area.height; ++row) {
        unsigned char const* const pixels = gray.data + size_t(area.y + row) * gray.width + area.x;
        for (int column = 0; column < area.width; ++column) {
            sum += pixels[column];
            squares += double(pixels[column]) * pixels[column];
        }
    }
    double const mean = sum / count;
    mUniformity.add(static_cast<float>(std::sqrt(std::max(0.0, squares / count - mean * mean))));
    object.setAttribute("Object Uniformity", rktl::String::fromFloat((255.0f - mUniformity.value()) / 255.0f, 6));
}
