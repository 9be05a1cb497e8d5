#include "detection/rk_background.h"

#include "detection/rk_distribution.h"
#include "image/rk_image.h"
#include "image/rk_row.h"

#include <algorithm>
#include <cstring>

// Two roads to the same bytes: by the channels' records, and by their mirror, which takes the frame a run at a time and looks at
// single pixels only where something differs.

namespace {

/// Foreground strength by distance in tenths of a standard deviation, 0 up to one deviation.
struct StrengthTable {
    uint8_t of[256];

    StrengthTable()
    {
        for (uint32_t tenths = 0; tenths < 256; ++tenths)
            of[tenths] = (uint8_t)(255 - (tenths > 99 ? 0 : g_CompTable[tenths]));
    }
};

bool uses_mirror(rk_background const* background)
{
    return !background->mirror_misfit && !rk_row_is_plain();
}

/// strength(pixel) gives the foreground value of a pixel. Writes all of foreground and returns how many are not 0.
template <class Strength> uint32_t compare_pixels(rk_image const* mask, rk_image* foreground, Strength strength)
{
    uint32_t count = 0;
    for (size_t i = 0; i < foreground->size; ++i) {
        foreground->data[i] = !mask || mask->data[i] ? strength(i) : 0;
        count += foreground->data[i] != 0;
    }
    return count;
}

uint32_t compare_gray(rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground)
{
    if (!uses_mirror(background))
        return compare_pixels(mask, foreground,
            [=](size_t i) { return (uint8_t)(255 - rk_distribution_membership(&background->channel0[i], image->data[i])); });
    StrengthTable const table;
    uint32_t const count = rk_row().strength(
        image->data, background->mirror_mean, background->mirror_inverse, table.of, foreground->data, foreground->size);
    if (!mask || count == 0)
        return count;
    return compare_pixels(mask, foreground, [=](size_t i) { return foreground->data[i]; });
}

uint8_t colour_strength(uint32_t blue, uint32_t green, uint32_t red)
{
    return (uint8_t)(255 - g_AvgTable[blue + green + red]); // at least 1 unless all three are full
}

uint32_t compare_colour_mirror(rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* foreground)
{
    constexpr size_t run = 256; // pixels
    StrengthTable const table;
    uint8_t tenths[4 * run];
    uint32_t count = 0;
    for (size_t first = 0; first < foreground->size; first += run) {
        size_t const pixels = std::min(run, foreground->size - first);
        uint8_t* const out = foreground->data + first;
        std::memset(out, 0, pixels);
        if (!rk_row().distance(image->data + 4 * first, background->mirror_mean + 4 * first,
                background->mirror_inverse + 4 * first, tenths, 4 * pixels))
            continue;
        for (size_t i = 0; i < pixels; ++i) {
            uint8_t const* const k = tenths + 4 * i;
            if ((k[0] <= 10 && k[1] <= 10 && k[2] <= 10) || (mask && !mask->data[first + i]))
                continue;
            out[i] = colour_strength(255 - table.of[k[0]], 255 - table.of[k[1]], 255 - table.of[k[2]]);
            ++count;
        }
    }
    return count;
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
    if (uses_mirror(background)) {
        *count = compare_colour_mirror(background, image, mask, foreground);
        return 1;
    }
    *count = compare_pixels(mask, foreground, [=](size_t i) {
        uint8_t const* const bgr = image->data + 4 * i;
        return colour_strength(rk_distribution_membership(&background->channel0[i], bgr[0]),
            rk_distribution_membership(&background->channel1[i], bgr[1]),
            rk_distribution_membership(&background->channel2[i], bgr[2]));
    });
    return 1;
}
