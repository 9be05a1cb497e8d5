#include "detection/rk_background.h"

#include "detection/rk_background_edges.h"
#include "detection/rk_region.h"
#include "image/rk_image.h"
#include "math/rk_fast.h"
#include "math/rk_running_avg.h"

#include <algorithm>
#include <cstdlib>

namespace {

/// Orientations in degrees; 359 and 1 are near one another.
bool orientations_match(uint32_t a, uint32_t b)
{
    uint32_t const distance = a < b ? b - a : a - b;
    return distance < 30 || distance > 330;
}

uint32_t orientation_at(rk_background const* background, uint32_t x, uint32_t y)
{
    return (uint32_t)background->edge_model[x + (size_t)background->width * y].value;
}

/// The gradients of a region of a gray image; empty when it is too small for the filter or memory is short.
class RegionGradients {
public:
    RegionGradients(rk_image const* gray, rk_bbox const& region)
    {
        mFilled = rk_init_image(&mCrop, region.width, region.height, 1) && rk_crop_image(gray, region.x, region.y, &mCrop) &&
            (mGradients = (rk_magnitude*)std::calloc(mCrop.size, sizeof(rk_magnitude))) && rk_sobel_image(&mCrop, mGradients);
    }
    ~RegionGradients()
    {
        std::free(mGradients);
        rk_free_image(&mCrop);
    }
    RegionGradients(RegionGradients const&) = delete;
    RegionGradients& operator=(RegionGradients const&) = delete;

    bool filled() const { return mFilled; }
    rk_magnitude const& at(uint32_t x, uint32_t y) const { return mGradients[x + (size_t)mCrop.width * y]; }

private:
    rk_image mCrop = {};
    rk_magnitude* mGradients = nullptr;
    bool mFilled = false;
};

/// Strong edges of a region, and how many of them the model knows.
struct EdgeTally {
    uint32_t edges = 0;
    uint32_t matches = 0;

    float score() const
    {
        constexpr uint32_t too_few_to_judge = 9;
        return edges > too_few_to_judge ? (float)matches / (float)edges : 1.0f;
    }
};

/// counts(x, y) says whether the pixel is looked at, matches(orientation, x, y) whether the model agrees; both in
/// coordinates of the model.
template <class Counts, class Matches>
EdgeTally tally_edges(RegionGradients const& gradients, rk_bbox const& region, Counts counts, Matches matches)
{
    EdgeTally tally;
    for (uint32_t y = 0; y < region.height; ++y)
        for (uint32_t x = 0; x < region.width; ++x) {
            rk_magnitude const& gradient = gradients.at(x, y);
            if (!rk_magnitude_is_edge(gradient) || !counts(region.x + x, region.y + y))
                continue;
            ++tally.edges;
            tally.matches += matches(rk_unwrap(gradient.dx, gradient.dy), region.x + x, region.y + y);
        }
    return tally;
}

} // namespace

int rk_background_valid_region(rk_background const* background, rk_bbox const* region)
{
    return background && region && rk_region_fits(*region, background->width, background->height);
}

int rk_background_check_region(rk_background const* background, uint32_t orientation, uint32_t x, uint32_t y, uint32_t radius)
{
    if (!background)
        return 0;
    uint32_t const left = x > radius ? x - radius : 0;
    uint32_t const top = y > radius ? y - radius : 0;
    uint32_t const right = (uint32_t)std::min<uint64_t>(background->width, (uint64_t)x + radius);
    uint32_t const bottom = (uint32_t)std::min<uint64_t>(background->height, (uint64_t)y + radius);
    for (uint32_t row = top; row < bottom; ++row)
        for (uint32_t column = left; column < right; ++column) {
            bool const known = background->edge_model[column + (size_t)background->width * row].value != 0.0f;
            if (known && orientations_match(orientation, orientation_at(background, column, row)))
                return 1;
        }
    return 0;
}

int rk_background_is_background(rk_background const* background, rk_image const* colour, rk_image const* gray,
    rk_image const* mask, rk_bbox const* region, uint32_t radius, int32_t mode, float* score)
{
    if (!background || !region || !colour || !score || !gray || !colour->data || colour->channels != 4 || !gray->data ||
        gray->channels != 1)
        return 0;
    // A surface without texture, or without any pixel, has no edges that could speak against it.
    if (rk_background_check_varmean(colour, region, mode) || region->height == 0) {
        *score = 1.0f;
        return 1;
    }
    uint64_t const diameter = 2 * (uint64_t)radius;
    if (diameter >= region->width || diameter >= region->height || !rk_background_valid_region(background, region))
        return 0;
    bool const use_mask = mask && (radius | 1) > 1;
    if (use_mask && (!mask->data || mask->channels != 1 || !rk_region_fits(*region, mask->width, mask->height)))
        return 0;
    RegionGradients const gradients(gray, *region);
    if (!gradients.filled())
        return 0;

    radius |= 1; // an even radius grows by one
    EdgeTally tally;
    if (radius == 1) {
        tally = tally_edges(
            gradients, *region, [](uint32_t, uint32_t) { return true; },
            [=](uint32_t orientation, uint32_t x, uint32_t y) {
                return orientations_match(orientation, orientation_at(background, x, y));
            });
    } else {
        tally = tally_edges(
            gradients, *region, [=](uint32_t x, uint32_t y) { return !mask || mask->data[x + (size_t)mask->width * y]; },
            [=](uint32_t orientation, uint32_t x, uint32_t y) {
                return rk_background_check_region(background, orientation, x, y, radius >> 1) != 0;
            });
    }
    *score = tally.score();
    return 1;
}
