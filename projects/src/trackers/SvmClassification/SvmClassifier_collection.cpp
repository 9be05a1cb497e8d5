#include "trackers/SvmClassification/SvmClassifier.h"

#include "BaseClasses/ProcessFrame.h"
#include "image/rkil_Conversion.h"
#include "image/rkil_Convert.h"
#include "math/rkml_Utility.h"
#include "trackers/SvmClassification/SvmClassifier_images.h"

#include <cmath>
#include <cstdlib>

namespace {

using Patches = rksl::List<rkil::FlatImage<4>>;
using Box = rkml::BoundingBox<int>;

constexpr size_t shortTrack = 10;      // records or crops that are not enough for a sample
constexpr int64_t leastAge = 1000;     // ms
constexpr size_t leastLeft = 4;        // records that are not enough after cleaning
constexpr uint32_t montageHeight = 60; // pixels
constexpr uint32_t montageTiles = 10;
constexpr uint32_t montageGap = 2; // pixels between tiles
constexpr uint32_t backgroundFrames = 12;
constexpr unsigned int cellColumns = 6;
constexpr unsigned int cellRows = 4;

/// A box with a side of up to 7 pixels becomes one of 9 or 10 pixels on both axes, about the same centre.
Box grown(Box box)
{
    if (box.width > 7 && box.height > 7)
        return box;
    int const dw = (8 - box.width) / 2 + 1, dh = (8 - box.height) / 2 + 1;
    return {box.x - dw, box.y - dh, box.width + 2 * dw, box.height + 2 * dh};
}

template <unsigned int N> bool crop(rk_image const& source, Box const& box, rkil::FlatImage<N>& target)
{
    return box.x >= 0 && box.y >= 0 && box.width > 0 && box.height > 0 &&
        target.resize(static_cast<unsigned int>(box.width), static_cast<unsigned int>(box.height)) &&
        rk_crop_image(&source, static_cast<uint32_t>(box.x), static_cast<uint32_t>(box.y), target.getImage());
}

/// The box in colour, or in gray as colour where the frame has no colours. False when it reaches beyond the frame.
bool cropPatch(rkil::MultiImage const& image, Box const& box, rkil::FlatImage<4>& patch)
{
    if (image.getForm(rkil::MultiImage::flatColour))
        return crop(*image.getFlatColour().getImage(), box, patch);
    rkil::FlatImage<1> gray;
    return crop(*image.getFlatGray().getImage(), box, gray) && rkil::gray2color(*gray.getImage(), *patch.getImage());
}

void trimEnds(auto& list, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        list.pop_front();
        list.pop_back();
    }
}

/// An object comes into the picture and leaves it in parts: the first and last twentieth of its life go.
void trimTrainObjectTracks(DataUnit& data)
{
    auto const count = static_cast<size_t>(std::floor(0.05f * static_cast<float>(data.mFeatures.size())));
    trimEnds(data.mFeatures, count);
    trimEnds(data.mPatches, count);
}

/// Drops the records whose feature 2 is further from the median than half the median, and their crops.
size_t sanitizeData(DataUnit& data)
{
    if (data.mFeatures.empty())
        return 0;
    std::vector<int> values;
    for (ObjectFeatures const& features : data.mFeatures)
        values.push_back(features.feature2);
    int64_t const median = rkml::median(values);
    int64_t const limit = std::llround(0.5 * static_cast<double>(median));
    auto patch = data.mPatches.begin();
    for (auto features = data.mFeatures.begin(); features != data.mFeatures.end();) {
        bool const isOdd = std::llabs(features->feature2 - median) > limit;
        features = isOdd ? data.mFeatures.erase(features) : std::next(features);
        if (patch != data.mPatches.end())
            patch = isOdd ? data.mPatches.erase(patch) : std::next(patch);
    }
    return data.mFeatures.size();
}

/// Median width of the patches at the height of the montage.
uint32_t tileWidth(Patches const& patches)
{
    std::vector<int> widths;
    for (auto const& patch : patches)
        widths.push_back(
            patch.empty() ? 0 : static_cast<int>(std::lround(double(patch.getWidth()) * montageHeight / patch.getHeight())));
    return static_cast<uint32_t>(rkml::median(widths));
}

Box cellBox(unsigned int cell, unsigned int width, unsigned int height)
{
    int const cellWidth = static_cast<int>(width / cellColumns), cellHeight = static_cast<int>(height / cellRows);
    return {static_cast<int>(cell % cellColumns) * cellWidth, static_cast<int>(cell / cellColumns) * cellHeight, cellWidth,
        cellHeight};
}

bool isTouched(Box const& cell, ObjectMap const& objects)
{
    for (auto const& [id, object] : objects) {
        Box box;
        if (object.newest(box) && box.x <= cell.x + cell.width && cell.x <= box.x + box.width && box.y <= cell.y + cell.height &&
            cell.y <= box.y + box.height)
            return true;
    }
    return false;
}

/// One more patch of an empty place, all of which counts.
void addBackground(rkil::MultiImage const& image, Box const& cell, DataUnit& data)
{
    rkil::FlatImage<1> gray, mask;
    rkil::FlatImage<4> patch;
    ObjectFeatures features;
    if (!crop(*image.getFlatGray().getImage(), cell, gray) || !cropPatch(image, cell, patch) ||
        !mask.resize(gray.getWidth(), gray.getHeight(), 255) || !features.generateFeatures(gray, mask))
        return;
    data.mPatches.push_back(patch);
    data.mFeatures.push_back(features);
}

} // namespace

/// The crop and the record of one frame.
void SvmClassifier::collect(Object const& object, ObjectFeatures const& features, Images const& images, DataUnit& data) const
{
    Box box;
    object.newest(box);
    rkil::FlatImage<4> patch;
    if (!cropPatch(images.all, grown(box), patch))
        return;
    data.mPatches.push_back(std::move(patch));
    data.mAge = object.age();
    data.mFeatures.push_back(features);
}

bool SvmClassifier::insertData(DataUnit& data, bool background)
{
    if (!background) {
        bool const isShort = data.mFeatures.size() <= shortTrack || data.mPatches.size() <= shortTrack;
        if (isShort || data.mAge <= rktl::ElapsedTime(leastAge))
            return true;
        trimTrainObjectTracks(data);
    }
    if (sanitizeData(data) <= leastLeft && !background)
        return false;
    rkil::FlatImage<4> montage;
    if (!createMontage(montage, data.mPatches))
        return true;
    data.mMontage = montage;
    TrainingData sample(data.mFeatures, 0, "", rktl::TimeStamp::systemTime());
    rkil::convert(data.mMontage, sample.mPreview);
    if (background)
        sample.mTag = TrainingData::noise;
    mTrainingData.push_back(sample);
    if (mSampleObserver)
        mSampleObserver(sample, data.mMontage);
    return true;
}

rksl::List<TrainingData> SvmClassifier::extractTrainingData()
{
    rksl::List<TrainingData> samples;
    samples.splice(samples.end(), mTrainingData);
    return samples;
}

bool SvmClassifier::createMontage(rkil::FlatImage<4>& target, Patches const& patches)
{
    if (patches.size() < 2)
        return false;
    uint32_t const width = tileWidth(patches);
    target.resize(width * montageTiles + montageTiles * montageGap, montageHeight);
    size_t const count = patches.size();
    float const step = static_cast<float>(count) / 10.0f;
    float position = 0;
    auto patch = patches.begin();
    uint32_t x = 0;
    for (size_t index = 0; index < count; ++index, ++patch) {
        auto const wanted = static_cast<size_t>(position + 0.5f);
        for (; index < wanted && index + 1 < count; ++index)
            ++patch;
        rkil::FlatImage<4> tile;
        if (tile.resize(width, montageHeight) && rk_scale_image(patch->getImage(), tile.getImage()))
            rk_paste_image(tile.getImage(), x, 0, target.getImage());
        x += width + montageGap;
        position += step;
    }
    return true;
}

// ---- Background

void SvmClassifier::startBkgCollection()
{
    if (mBkgFrames != 0)
        return;
    mBkgCollecting = true;
    mBkgPatches.assign(cellColumns * cellRows, {});
}

void SvmClassifier::stopBkgCollection()
{
    mBkgFrames = 0;
    mBkgCollecting = false;
    mBkgPatches.clear();
}

void SvmClassifier::collectBackground(ProcessFrame const& frame, rktl::String const& imageName)
{
    rkil::MultiImage const& image = frame.getMultiImage(imageName);
    if (++mBkgFrames <= backgroundFrames) {
        for (unsigned int cell = 0; cell < mBkgPatches.size(); ++cell) {
            Box const box = cellBox(cell, image.getWidth(), image.getHeight());
            if (!isTouched(box, frame.getObjects()))
                addBackground(image, box, mBkgPatches[cell].mData);
        }
        return;
    }
    for (ObjectInfo& cell : mBkgPatches)
        if (cell.mData.mPatches.size() > 1)
            insertData(cell.mData, true);
    mBkgCollecting = false;
    mBkgPatches.clear();
}
