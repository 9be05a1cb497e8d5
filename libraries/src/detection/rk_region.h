#pragma once

#include "math/rk_bbox.h"

/// True when the region's pixels all lie in a picture of width by height.
inline bool rk_region_fits(rk_bbox const& region, uint32_t width, uint32_t height)
{
    return (uint64_t)region.x + region.width <= width && (uint64_t)region.y + region.height <= height;
}
