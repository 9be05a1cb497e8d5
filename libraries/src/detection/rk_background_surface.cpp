#include "detection/rk_background.h"

#include "detection/rk_region.h"
#include "image/rk_image.h"

#include <cstddef>

namespace {

/// Sums of bytes, exact for every picture that fits memory.
struct Moments {
    uint64_t count = 0;
    uint64_t sum = 0;
    uint64_t squares = 0;

    void add(uint8_t const* bytes, size_t bytes_count, size_t stride)
    {
        count += bytes_count;
        for (size_t i = 0; i < bytes_count; ++i) {
            uint32_t const value = bytes[i * stride];
            sum += value;
            squares += value * value;
        }
    }

    float mean() const { return (float)((double)sum / (double)count); }

    float variance() const
    {
        double const average = (double)sum / (double)count;
        double const spread = (double)squares / (double)count - average * average;
        return spread > 0.0 ? (float)spread : 0.0f; // rounding may leave a trace below 0
    }
};

struct Surface {
    Moments channels[3];

    Surface(rk_image const* colour, rk_bbox const& region)
    {
        for (uint32_t y = region.y; y < region.y + region.height; ++y)
            for (uint32_t channel = 0; channel < 3; ++channel) {
                uint8_t const* row = colour->data + 4 * (region.x + (size_t)y * colour->width);
                channels[channel].add(row + channel, region.width, 4);
            }
    }

    bool is_bright(int32_t mode) const
    {
        if (mode == 2)
            return channels[0].mean() > 30.747f;
        return channels[0].mean() > 50.0f || channels[1].mean() > 50.0f || channels[2].mean() > 50.0f;
    }

    bool is_smooth(int32_t mode) const
    {
        float const chroma_limit = mode == 2 ? 100.0f : 625.0f;
        return channels[2].variance() < chroma_limit && channels[1].variance() < chroma_limit && channels[0].variance() < 625.0f;
    }
};

} // namespace

int rk_background_check_varmean(rk_image const* colour, rk_bbox const* region, int32_t mode)
{
    if (!colour || !colour->data || !region || colour->channels != 4 || region->width == 0 || region->height == 0 ||
        !rk_region_fits(*region, colour->width, colour->height))
        return 0;
    Surface const surface(colour, *region);
    return surface.is_bright(mode) && surface.is_smooth(mode);
}

int rk_background_varmean(uint8_t const* bytes, uint32_t count, float* variance, float* mean)
{
    if (!bytes || count == 0 || !variance || !mean)
        return 0;
    Moments moments;
    moments.add(bytes, count, 1);
    *variance = moments.variance();
    *mean = moments.mean();
    return 1;
}

int rk_background_rgb_to_gray(rk_image const* colour, rk_image* gray)
{
    if (!rk_image_valid(colour) || !rk_image_valid(gray) || colour->channels != 4 || gray->channels != 1 ||
        colour->width != gray->width || colour->height != gray->height)
        return 0;
    for (size_t i = 0; i < gray->size; ++i) {
        uint8_t const* const bgr = colour->data + 4 * i;
        gray->data[i] = (uint8_t)((30u * bgr[2] + 59u * bgr[1] + 11u * bgr[0]) / 100u);
    }
    return 1;
}

float rk_background_square(float value)
{
    return value * value;
}
