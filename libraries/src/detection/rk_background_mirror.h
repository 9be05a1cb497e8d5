#pragma once

#include "detection/rk_background.h"
#include "detection/rk_distribution.h"

#include <cstddef>

/// How a distribution stands in the mirror that rk_background keeps for fast comparisons.

/// Bytes that a pixel takes in the mirror: as many as in an image of the mode.
inline size_t rk_background_mirror_channels(rk_background const* background)
{
    return background->mode > 0 ? 4 : 1;
}

/// Returns not 0 when the distribution does not fit, which a standard deviation of 6 or more and a mean of bytes always do.
inline uint32_t rk_background_mirror(rk_distribution const& distribution, uint8_t* mean, uint8_t* inverse)
{
    *mean = (uint8_t)distribution.mean;
    *inverse = distribution.unset ? 0 : (uint8_t)distribution.inverse_stdev;
    return (uint32_t)(distribution.mean | distribution.inverse_stdev) & ~255u;
}
