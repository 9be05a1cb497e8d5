#pragma once

#include <cstdint>

struct rk_image;

/// One pixel of a gradient.
struct rk_magnitude {
    int32_t dx; ///< right minus left, -1020 to 1020
    int32_t dy; ///< top minus bottom, -1020 to 1020
};

/// The 3 by 3 gradient operator of Sobel and Feldman over a one-channel image of at least 3 by 3 pixels. target has width *
/// height elements; those of the outer rows and columns become 0. Returns 0, with target as it was, for any other image or null.
int rk_sobel_image(rk_image const* gray, rk_magnitude* target);
