#pragma once

#include "image/rk_sobel.h"

#include <cstdlib>

/// True for a gradient that belongs to an edge and not to noise.
inline bool rk_magnitude_is_edge(rk_magnitude const& gradient)
{
    return std::abs(gradient.dx) + std::abs(gradient.dy) > 200; // of 2 * 1020 at most
}
