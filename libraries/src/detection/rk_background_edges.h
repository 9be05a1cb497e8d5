#pragma once

#include "image/rk_sobel.h"

#include <cstdlib>

struct rk_background;

/// Gives the edge model the weight that waits for it, if one does.
void rk_background_apply_edge_weight(rk_background* background);

/// True for a gradient that belongs to an edge and not to noise.
inline bool rk_magnitude_is_edge(rk_magnitude const& gradient)
{
    return std::abs(gradient.dx) + std::abs(gradient.dy) > 200; // of 2 * 1020 at most
}
