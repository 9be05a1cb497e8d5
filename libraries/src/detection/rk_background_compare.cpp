#include "detection/rk_background.h"

#include "detection/rk_distribution.h"
#include "image/rk_image.h"

#include <algorithm>
#include <cstring>

// A pixel whose channels all lie in their bands is background, and most pixels are. So the comparison walks the frame in
// blocks of 64 bytes: a block without a byte outside its band is done, which the compiler turns into a few vector
// instructions, and only the pixels of the other blocks are looked up in the model.

namespace {

constexpr size_t block_bytes = 64;

bool block_in_band(uint8_t const* values, uint8_t const* low, uint8_t const* high)
{
    uint8_t outside = 0;
    for (size_t i = 0; i < block_bytes; ++i)
        outside |= (uint8_t)((values[i] < low[i]) | (values[i] > high[i]));
    return !outside;
}

/// strength(pixel) gives the foreground value of a pixel; it is 0 exactly for background. Returns the number of others.
template <size_t Channels, class Strength>
uint32_t compare_blocks(
    rk_background const* background, rk_image const* image, uint8_t const* mask, uint8_t* foreground, Strength strength)
{
    constexpr size_t block = block_bytes / Channels;
    size_t const pixels = (size_t)background->width * background->height;
    uint32_t count = 0;
    for (size_t first = 0; first < pixels; first += block) {
        size_t const offset = first * Channels;
        size_t const end = std::min(first + block, pixels);
        if (end - first == block &&
            block_in_band(image->data + offset, background->band_low + offset, background->band_high + offset)) {
            std::memset(foreground + first, 0, block);
            continue;
        }
        for (size_t i = first; i < end; ++i) {
            foreground[i] = mask && !mask[i] ? 0 : strength(i);
            count += foreground[i] != 0;
        }
    }
    return count;
}

uint32_t compare_gray(rk_background const* background, rk_image const* image, uint8_t const* mask, uint8_t* foreground)
{
    rk_distribution const* model = background->channel0;
    uint8_t const* values = image->data;
    uint8_t const* low = background->band_low;
    uint8_t const* high = background->band_high;
    return compare_blocks<1>(background, image, mask, foreground, [=](size_t i) -> uint8_t {
        if (values[i] >= low[i] && values[i] <= high[i])
            return 0;
        return (uint8_t)(255 - rk_distribution_membership(&model[i], values[i]));
    });
}

bool has_bytes(rk_image const* image, uint64_t size)
{
    return image->size == size && (image->data || size == 0);
}

bool shapes_fit(rk_background const* background, rk_image const* image, rk_image const* mask, rk_image const* foreground)
{
    uint64_t const pixels = (uint64_t)background->width * background->height;
    if (background->mode > 0 ? image->channels != 4 : background->mode == 0 && image->channels != 1)
        return false;
    return has_bytes(foreground, pixels) && (!mask || has_bytes(mask, pixels)) && image->width == background->width &&
        image->height == background->height && has_bytes(image, pixels * image->channels);
}

} // namespace

int rk_background_compare(
    rk_background* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count)
{
    if (!background || !image || !foreground || !count || !shapes_fit(background, image, mask, foreground))
        return 0;
    switch (background->mode) {
    case 0:
        *count = compare_gray(background, image, mask ? mask->data : nullptr, foreground->data);
        return 1;
    case 1:
        return rk_background_compare_bgr(background, image, mask, foreground, count);
    case 2:
        return rk_background_compare_lab(background, image, mask, foreground, count);
    default:
        std::fill_n(foreground->data, foreground->size, (uint8_t)0);
        *count = 0;
        return 0;
    }
}

int rk_background_compare_bgr(
    rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count)
{
    uint8_t const* values = image->data;
    uint8_t const* low = background->band_low;
    uint8_t const* high = background->band_high;
    *count = compare_blocks<4>(background, image, mask ? mask->data : nullptr, foreground->data, [=](size_t i) -> uint8_t {
        bool outside = false;
        for (size_t byte = 4 * i; byte < 4 * i + 3; ++byte)
            outside |= (values[byte] < low[byte]) | (values[byte] > high[byte]);
        if (!outside)
            return 0;
        uint32_t const sum = rk_distribution_membership(&background->channel2[i], values[4 * i + 2]) +
            rk_distribution_membership(&background->channel1[i], values[4 * i + 1]) +
            rk_distribution_membership(&background->channel0[i], values[4 * i]);
        return (uint8_t)(255 - g_AvgTable[sum]); // at least 1, as one of the three is not full
    });
    return 1;
}
