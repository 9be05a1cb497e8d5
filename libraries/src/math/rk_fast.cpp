#include "math/rk_fast.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

namespace {

/// The definition; the probing bit starts at 2^30 and is lowered until it is not above the value.
constexpr int32_t root_by_bit_pairs(int32_t value)
{
    int32_t rest = value;
    int32_t root = 0;
    int32_t bit = 1 << 30;
    while (bit > value)
        bit >>= 2;
    for (; bit != 0; bit >>= 2) {
        if (rest >= root + bit) {
            rest -= root + bit;
            root = (root >> 1) + bit;
        } else {
            root >>= 1;
        }
    }
    return root;
}

/// roots[i]: the root of the largest number whose upper byte of two is i. It is the root of each such number from 16384
/// on, or one too large, as there the root grows by less than 1 over the 256 values of a lower byte.
constexpr auto roots = [] {
    std::array<uint8_t, 256> table = {};
    for (int32_t i = 0; i < 256; ++i)
        table[(size_t)i] = (uint8_t)root_by_bit_pairs(256 * i + 255);
    return table;
}();

} // namespace

int32_t rk_fast_sqrt(int32_t value)
{
    if (value <= 0)
        return 0;
    if (value > 65535)
        return root_by_bit_pairs(value);
    // Scaled by a power of four into 16384 to 65535, looked up, scaled back: the root or one too large.
    int32_t const shift = (16 - (int32_t)std::bit_width((uint32_t)value)) & ~1;
    int32_t const root = roots[(size_t)(value << shift) >> 8] >> (shift / 2);
    return root - (root * root > value);
}

uint32_t rk_unwrap(int32_t dx, int32_t dy)
{
    // A turn and the degrees of a radian, both rounded to single precision: stored orientations depend on these digits.
    constexpr double turn = 6.283185005187988;
    constexpr double degrees = 57.295780181884766;
    double angle = std::atan2((double)dy, (double)dx);
    if (angle < 0.0)
        angle += turn;
    return (uint32_t)(angle * degrees) + 1;
}

float rk_fast_atan_quad1(uint32_t y, uint32_t x)
{
    return rk_fast_atan_quad1((float)y, (float)x);
}
