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

/// Stores at `offset` of the planes which values have full membership in the distribution.
inline void rk_background_set_band(rk_background* background, size_t offset, rk_distribution const& distribution)
{
    int32_t const reach = distribution.unset ? 255 : g_ReachTable[distribution.inverse_stdev];
    background->band_low[offset] = (uint8_t)std::max(distribution.mean - reach, 0);
    background->band_high[offset] = (uint8_t)std::min(distribution.mean + reach, 255);
}
