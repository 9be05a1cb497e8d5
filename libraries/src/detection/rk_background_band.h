#pragma once

#include "detection/rk_background.h"
#include "detection/rk_distribution.h"

#include <algorithm>
#include <cstddef>

/// The band of values that a distribution takes for background, as rk_background keeps it for fast comparisons.

/// Bytes that a pixel takes in the band planes: as many as in an image of the mode.
inline size_t rk_background_band_channels(rk_background const* background)
{
    return background->mode > 0 ? 4 : 1;
}

/// Stores which values have full membership in the distribution.
inline void rk_background_set_band(rk_distribution const& distribution, uint8_t* low, uint8_t* high)
{
    int32_t const reach = distribution.unset ? 255 : g_ReachTable[distribution.inverse_stdev];
    *low = (uint8_t)std::max(distribution.mean - reach, 0);
    *high = (uint8_t)std::min(distribution.mean + reach, 255);
}
