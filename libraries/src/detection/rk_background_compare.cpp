#include "detection/rk_background.h"

#include "detection/rk_distribution.h"
#include "image/rk_image.h"

#include <algorithm>
#include <cstring>

// A pixel whose channels all lie in their bands is background, and most pixels are. So the comparison walks the frame in
// blocks: it marks the bytes outside their bands, which the compiler turns into a few vector instructions, passes over
// words without a mark, and looks only the pixels of the other words up in the model.

namespace {

using Word = uint64_t;
constexpr size_t block_bytes = 64;

/// marks[i] becomes 0 for a value inside its band.
void mark_outside(uint8_t const* values, uint8_t const* low, uint8_t const* high, size_t count, uint8_t* marks)
{
    for (size_t i = 0; i < count; ++i)
        marks[i] = (uint8_t)((values[i] < low[i]) | (values[i] > high[i]));
}

/// strength(pixel) gives the foreground value of a pixel with a channel outside its band, at least 1.
/// Writes all of foreground and returns the number of pixels that differ.
template <size_t Channels, class Strength>
uint32_t compare_bands(
    rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground, Strength strength)
{
    constexpr size_t word_pixels = sizeof(Word) / Channels;
    std::memset(foreground->data, 0, foreground->size);
    size_t const bytes = foreground->size * Channels;
    uint32_t count = 0;
    for (size_t block = 0; block < bytes; block += block_bytes) {
        uint8_t marks[block_bytes] = {};
        mark_outside(image->data + block, background->band_low + block, background->band_high + block,
            std::min(block_bytes, bytes - block), marks);
        for (size_t word = 0; word < block_bytes; word += sizeof(Word)) {
            Word marked;
            std::memcpy(&marked, marks + word, sizeof marked);
            if (!marked)
                continue;
            for (size_t k = 0; k < word_pixels; ++k) {
                uint32_t pixel_marks = 0;
                for (size_t channel = 0; channel < Channels; ++channel)
                    pixel_marks |= marks[word + k * Channels + channel];
                size_t const pixel = (block + word) / Channels + k;
                if (!pixel_marks || (mask && !mask->data[pixel]))
                    continue;
                foreground->data[pixel] = strength(pixel);
                ++count;
            }
        }
    }
    return count;
}

uint32_t compare_gray(rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground)
{
    return compare_bands<1>(background, image, mask, foreground,
        [=](size_t i) { return (uint8_t)(255 - rk_distribution_membership(&background->channel0[i], image->data[i])); });
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
        *count = compare_gray(background, image, mask, foreground);
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
    *count = compare_bands<4>(background, image, mask, foreground, [=](size_t i) {
        uint8_t const* const bgr = image->data + 4 * i;
        uint32_t const sum = rk_distribution_membership(&background->channel2[i], bgr[2]) +
            rk_distribution_membership(&background->channel1[i], bgr[1]) +
            rk_distribution_membership(&background->channel0[i], bgr[0]);
        return (uint8_t)(255 - g_AvgTable[sum]); // at least 1, as one of the three is not full
    });
    return 1;
}
