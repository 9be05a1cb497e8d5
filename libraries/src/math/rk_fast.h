#pragma once

#include <algorithm>
#include <cstdint>

/// Short ways to functions that per-pixel and per-blob code needs, defined to the bit.

/// Integer square root, rounded down, by the bit-pair method (two bits of the value give one bit of the root).
/// A negative value gives 0.
int32_t rk_fast_sqrt(int32_t value);

/// Orientation of the gradient (dx, dy) in whole degrees from 1 to about 361, counted from the positive x axis.
/// 0 is never returned: it stays free to mean "no edge". The gradient (0, 0) gives 1.
uint32_t rk_unwrap(int32_t dx, int32_t dy);

/// Angle of (x, y) in the first quadrant, in radians: a quadratic approximation of the arc tangent with an error of at
/// most 0.004. Note the order of the arguments. (0, 0) gives 0.
float rk_fast_atan_quad1(uint32_t y, uint32_t x);

/// The same for whole numbers that stand as floats; without a branch, so that loops over it can be vectorised.
inline float rk_fast_atan_quad1(float y, float x)
{
    constexpr float right_angle = 1.570796f;
    constexpr float half_right_angle = 0.7853981f;
    float const longer = std::max(x, y);
    float const ratio = std::min(x, y) / std::max(longer, 1.0f);
    float const angle = (ratio * -0.273f + 1.0584f) * ratio;
    float const complement = right_angle - angle;
    float const unequal = y > x ? complement : angle;
    float const diagonal = longer > 0.0f ? half_right_angle : 0.0f;
    return x == y ? diagonal : unequal;
}
