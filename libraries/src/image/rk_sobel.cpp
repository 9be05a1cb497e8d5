#include "image/rk_sobel.h"

#include "image/rk_image.h"

#include <algorithm>

int rk_sobel_image(rk_image const* gray, rk_magnitude* target)
{
    if (!rk_image_valid(gray) || !target || gray->channels != 1 || gray->width < 3 || gray->height < 3)
        return 0;
    size_t const width = gray->width;
    size_t const height = gray->height;
    std::fill_n(target, width, rk_magnitude{});
    std::fill_n(target + (height - 1) * width, width, rk_magnitude{});
    for (size_t y = 1; y + 1 < height; ++y) {
        unsigned char const* const row = gray->data + y * width;
        unsigned char const* const above = row - width;
        unsigned char const* const below = row + width;
        rk_magnitude* const out = target + y * width;
        out[0] = out[width - 1] = {};
        for (size_t x = 1; x + 1 < width; ++x) {
            int32_t const a = above[x - 1], b = above[x], c = above[x + 1];
            int32_t const d = row[x - 1], f = row[x + 1];
            int32_t const g = below[x - 1], h = below[x], i = below[x + 1];
            out[x].dx = (c + 2 * f + i) - (a + 2 * d + g);
            out[x].dy = (a + 2 * b + c) - (g + 2 * h + i);
        }
    }
    return 1;
}
