#include "trackers/EventSpies/ObjectTaken.h"

#include "image/rk_threshold.h"
#include "math/rk_fast.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr uint32_t cellsAcross = 4;
constexpr uint32_t smallestCell = 16; // pixels
constexpr uint32_t grayBins = 16;
constexpr uint32_t colourBins = 48; // 16 each of blue, green and red
constexpr uint32_t edgeBins = 10;   // the first for what is hardly an edge

constexpr uint32_t weakestEdge = 99;  // |dx| + |dy| up to which a pixel has no direction
constexpr float directionsPerRad = 5; // the degrees in a radian, 57, in tens
constexpr uint32_t learningFrames = 11;
constexpr float likeness = 0.85f;   // of a cell, from which it learns
constexpr float learnWeight = 0.1f; // of a new picture
constexpr float returnScore = 0.8f; // above which a changed asset is back
constexpr float valueWeight = 0.3f;
constexpr float edgeWeight = 0.7f;
constexpr float nothingStored = -1.0f;

/// The similarity of a cell, which learns from what is at least as similar as threshold.
float compareAndUpdate(rkml::Histogram& stored, rkml::Histogram const& fresh, float threshold)
{
    if (stored.getTotal() == 0) {
        stored = fresh;
        return nothingStored;
    }
    float const similarity = 1.0f - stored.distanceTo(fresh, rkml::Histogram::DistL1);
    if (similarity >= threshold)
        stored.average(fresh, learnWeight);
    return similarity;
}

template <size_t Bins> void setCounts(rkml::Histogram& histogram, std::array<uint32_t, Bins> const& counts)
{
    histogram.clear();
    uint32_t const bins = std::min<uint32_t>(Bins, histogram.getBinCount());
    for (uint32_t bin = 0; bin < bins; ++bin)
        histogram.incrementBin(bin, counts[bin]);
}

bool isColourOf(rk_image const& colour, rk_image const& gray)
{
    return colour.channels == 4 && colour.width == gray.width && colour.height == gray.height;
}

/// The bounding box cut to the picture, as extents.
rk_bbox boxWithin(rkml::Polygon2D<int> outline, unsigned int width, unsigned int height)
{
    for (rkml::Point2D<int>& point : outline.points())
        point = {std::clamp(point.x, 0, static_cast<int>(width)), std::clamp(point.y, 0, static_cast<int>(height))};
    rkml::BoundingBox<int> const box = outline.boundingbox();
    rk_bbox inside = {static_cast<uint32_t>(box.x), static_cast<uint32_t>(box.y), static_cast<uint32_t>(box.width),
        static_cast<uint32_t>(box.height)};
    rk_bbox_restrict(&inside, width, height);
    return inside;
}

} // namespace

ObjectTaken::SubRegion::SubRegion(rk_bbox const& box)
    : mValueHistogram(colourBins)
    , mEdgeHistogram(edgeBins)
    , mBox(box)
{
}

ObjectTaken::ObjectTaken()
    : mMask(0)
    , mFreshEdges(edgeBins)
{
}

ObjectTaken::~ObjectTaken()
{
    rk_free_image(&mMaskImage);
    rk_free_image(&mCropImage);
}

ObjectTaken::ObjectTaken(ObjectTaken const& other)
    : ObjectTaken()
{
    *this = other;
}

ObjectTaken& ObjectTaken::operator=(ObjectTaken const& other)
{
    mSensitivity = other.mSensitivity;
    mRegion = other.mRegion;
    reset();
    return *this;
}

bool ObjectTaken::setSensitivity(float sensitivity)
{
    if (!(sensitivity >= 0.0f && sensitivity <= 1.0f))
        return false;
    mSensitivity = sensitivity;
    return true;
}

void ObjectTaken::setRegion(rkml::Polygon2D<float> const& region)
{
    mRegion = region;
    reset();
}

void ObjectTaken::reset()
{
    for (SubRegion& cell : mSubRegions) {
        cell.mValueHistogram.clear();
        cell.mEdgeHistogram.clear();
        cell.mFrames = 0;
    }
    mMessage.clear();
    mChangeStart = rktl::ElapsedTime();
    rk_free_image(&mMaskImage);
}

// ---- Layout ----

void ObjectTaken::resize(unsigned int width, unsigned int height)
{
    if (mRegion.points().size() < 3) {
        mMask = rkml::Mask2D<int>(0);
        mSubRegions.clear();
        rk_free_image(&mMaskImage);
        mRegionBox = {};
        return;
    }
    if (width == 0 || height == 0)
        return;
    rkml::Polygon2D<int> const outline = mRegion.denormalize(static_cast<int>(width), static_cast<int>(height));
    drawMask(outline, width, height);
    mRegionBox = boxWithin(outline, width, height);
    mGradients.assign(size_t(mRegionBox.width) * mRegionBox.height, {});
    layOutCells(width, height);
}

void ObjectTaken::drawMask(rkml::Polygon2D<int> const& outline, unsigned int width, unsigned int height)
{
    int const columns = static_cast<int>(width), rows = static_cast<int>(height);
    mMask = rkml::Mask2D<int>(0);
    mMask.addPolygon(outline, 1, {0, 0, columns, rows});
    rk_resize_image(&mMaskImage, width, height, 1, 0);
    unsigned char* pixel = mMaskImage.data;
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            *pixel++ = mMask.at(x, y) != 0 ? 255 : 0;
}

void ObjectTaken::layOutCells(unsigned int width, unsigned int height)
{
    auto const cellSize = [](uint32_t length) { return std::max(length / cellsAcross, smallestCell); };
    uint32_t const cellWidth = cellSize(mRegionBox.width), cellHeight = cellSize(mRegionBox.height);
    uint32_t const columns = mRegionBox.width / cellWidth, rows = mRegionBox.height / cellHeight;
    mSubRegions.clear();
    for (uint32_t row = 0; row < rows; ++row)
        for (uint32_t column = 0; column < columns; ++column) {
            rk_bbox box = {mRegionBox.x + column * cellWidth, mRegionBox.y + row * cellHeight, cellWidth, cellHeight};
            rk_bbox_restrict(&box, width, height);
            mSubRegions.emplace_back(box.width && box.height ? box : rk_bbox{});
        }
}

// ---- Comparison ----

ObjectTaken::Result ObjectTaken::process(rktl::ElapsedTime const& time, rk_image const& gray, float& confidence)
{
    return process(time, gray, rk_image{}, confidence);
}

ObjectTaken::Result ObjectTaken::process(
    rktl::ElapsedTime const& time, rk_image const& gray, rk_image const& colour, float& confidence)
{
    confidence = 0.0f;
    if (mRegion.points().size() < 3)
        return fail("Invalid asset region");
    if (!rk_image_valid(&gray) || gray.channels != 1 || (rk_image_valid(&colour) && !isColourOf(colour, gray)))
        return fail("Invalid image");
    if (gray.width != mMaskImage.width || gray.height != mMaskImage.height)
        resize(gray.width, gray.height);
    if (mRegionBox.width > gray.width || mRegionBox.height > gray.height)
        return fail(rktl::String::fromFormat(
            "Invalid image dimensions(%ux%u) Asset (%ux%u)", gray.width, gray.height, mRegionBox.width, mRegionBox.height));
    float value = 0.0f, edge = 0.0f;
    if (compareCells(gray, colour, value, edge))
        return judge(time, value, edge, confidence);
    mChangeStart = rktl::ElapsedTime(); // a cell was empty
    return nothing;
}

ObjectTaken::Result ObjectTaken::fail(rktl::String const& message)
{
    mMessage = message;
    return failed;
}

/// The mean similarities of values and edges over all cells, 0 without cells; false when one of them is below 0.
bool ObjectTaken::compareCells(rk_image const& gray, rk_image const& colour, float& value, float& edge)
{
    bool const hasColour = rk_image_valid(&colour) != 0;
    uint32_t const valueBins = hasColour ? colourBins : grayBins;
    if (mFreshValues.getBinCount() != valueBins)
        mFreshValues.setBins(valueBins);
    if (mRegionBox.width && mRegionBox.height) {
        rk_ensure_image(&mCropImage, mRegionBox.width, mRegionBox.height, 1);
        rk_crop_image(&gray, mRegionBox.x, mRegionBox.y, &mCropImage);
        rk_sobel_image(&mCropImage, mGradients.data());
    }
    double values = 0.0, edges = 0.0;
    for (SubRegion& cell : mSubRegions) {
        float const threshold = cell.mFrames < learningFrames ? 0.0f : likeness;
        fillHistogram(mFreshValues, cell.mBox, hasColour ? colour : gray);
        values += compareAndUpdate(cell.mValueHistogram, mFreshValues, threshold);
        fillHistogram(mFreshEdges, cell.mBox, mGradients);
        edges += compareAndUpdate(cell.mEdgeHistogram, mFreshEdges, threshold);
        ++cell.mFrames;
    }
    double const count = mSubRegions.empty() ? 1.0 : static_cast<double>(mSubRegions.size());
    value = static_cast<float>(values / count);
    edge = static_cast<float>(edges / count);
    return value >= 0.0f && edge >= 0.0f;
}

ObjectTaken::Result ObjectTaken::judge(rktl::ElapsedTime const& time, float value, float edge, float& confidence)
{
    float const score = value * valueWeight + edge * edgeWeight;
    bool const isRunning = mChangeStart != rktl::ElapsedTime();
    if (score < mSensitivity) {
        if (!isRunning)
            mChangeStart = time;
        confidence = 1.0f - score;
        mMessage =
            rktl::String::fromFormat("Confidences:  Edge %f, Value %f", static_cast<double>(edge), static_cast<double>(value));
        return changed;
    }
    if (!isRunning || score <= returnScore)
        return nothing;
    confidence = score;
    reset();
    return returned;
}

/// Values within the outline.
void ObjectTaken::fillHistogram(rkml::Histogram& histogram, rk_bbox const& box, rk_image const& image) const
{
    std::array<uint32_t, colourBins> counts = {};
    for (uint32_t y = box.y; y < box.y + box.height; ++y) {
        unsigned char const* inside = mMaskImage.data + rk_image_index(&mMaskImage, box.x, y);
        unsigned char const* pixel = image.data + rk_image_index(&image, box.x, y);
        for (uint32_t x = 0; x < box.width; ++x, ++inside, pixel += image.channels) {
            if (*inside == 0)
                continue;
            ++counts[pixel[0] >> 4];
            if (image.channels == 4) {
                ++counts[(pixel[1] >> 4) + 16];
                ++counts[(pixel[2] >> 4) + 32];
            }
        }
    }
    setCounts(histogram, counts);
}

/// Directions in the whole box, by strength.
void ObjectTaken::fillHistogram(rkml::Histogram& histogram, rk_bbox const& box, std::vector<rk_magnitude> const& gradients) const
{
    std::array<uint32_t, edgeBins> counts = {};
    for (uint32_t y = 0; y < box.height; ++y) {
        rk_magnitude const* gradient = &gradients[(box.y - mRegionBox.y + y) * mRegionBox.width + box.x - mRegionBox.x];
        for (uint32_t x = 0; x < box.width; ++x, ++gradient) {
            uint32_t const dx = static_cast<uint32_t>(std::abs(gradient->dx)), dy = static_cast<uint32_t>(std::abs(gradient->dy));
            uint32_t const strength = dx + dy;
            uint32_t const bin =
                strength <= weakestEdge ? 0 : static_cast<uint32_t>(rk_fast_atan_quad1(dx, dy) * directionsPerRad) + 1;
            counts[std::min(bin, edgeBins - 1)] += strength;
        }
    }
    setCounts(histogram, counts);
}
