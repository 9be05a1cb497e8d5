#pragma once

#include "math/rk_fast.h"

#include <cstdint>

/// What one 8-bit channel of one pixel usually shows: a single adaptive Gaussian in integer arithmetic, after
/// C. Wren et al., "Pfinder: Real-Time Tracking of the Human Body", IEEE Trans. PAMI 19(7), 1997.
struct rk_distribution {
    int32_t mean;          // of the channel value, 0 to 255
    int32_t mean_square;   // mean of the squared value, 0 to 65025
    int32_t stdev;         // 0 to 255; 255 after a reset
    int32_t weight;        // of a new sample in 1/128, 0 to 128
    int32_t min_variance;  // min_stdev squared; a variance up to here counts as noise of the sensor
    int32_t min_stdev;     // lower limit of stdev
    int32_t inverse_stdev; // 1280 / stdev of the last variance above min_variance; 0 until there was one
    int32_t unset;         // 255 until the first sample (and then a mask of all ones for a membership), 0 afterwards
};
static_assert(sizeof(rk_distribution) == 32, "eight words, so that two pixels fill a cache line");

/// A learning weight of 1.0.
constexpr int32_t rk_distribution_weight_one = 1 << 7;
static_assert(65025 * rk_distribution_weight_one < INT32_MAX, "a squared byte in 7-bit weights fits a signed word");

/// Membership, 0 to 255, by distance from the mean in tenths of a standard deviation: full up to one standard deviation,
/// then falling with the inverse square.
extern uint8_t g_CompTable[100];

/// 1280 / standard deviation; 1280 for 0 and 1.
extern uint16_t g_DivTable[1280];

/// Builds the tables above. They are process-wide, and every call writes the same values. Returns 1.
int rk_distribution_init();

/// Forgets the statistics and the minimum; weight and inverse_stdev stay. Returns 0 for a missing record.
int rk_distribution_reset(rk_distribution* distribution);

/// Stores floor(weight * 128). Returns 0, with nothing changed, for a missing record or a weight outside 0.0 to 1.0.
int rk_distribution_set_weight(rk_distribution* distribution, float weight);

/// Sets the lower limit of the standard deviation; it is felt at the next update. Returns 0, with nothing changed, for a
/// missing record, for 0, and for a value whose square does not fit its word (above 46340).
int rk_distribution_set_min_stdev(rk_distribution* distribution, uint32_t stdev);

/// How well a channel value, 0 to 255, fits: 255 is background, and so is every value while the distribution is unset.
/// Kernel: the tables are built, nothing is checked.
inline uint8_t rk_distribution_membership(rk_distribution const* distribution, int32_t value)
{
    int32_t const distance = value < distribution->mean ? distribution->mean - value : value - distribution->mean;
    int32_t const tenths = (distribution->inverse_stdev * distance) >> 7; // 1280 * 255 at most: no overflow
    int32_t const membership = tenths > 99 ? 0 : g_CompTable[tenths];
    return (uint8_t)(membership | distribution->unset);
}

/// Learns a channel value, 0 to 255. The first one seeds the distribution.
/// Kernel: the tables are built, nothing is checked.
inline void rk_distribution_update(rk_distribution* distribution, int32_t value)
{
    rk_distribution& d = *distribution;
    if (d.unset) {
        d.mean = value;
        d.mean_square = value * value;
        d.stdev = d.min_stdev;
        d.unset = 0;
        return;
    }
    int32_t const kept = rk_distribution_weight_one - d.weight;
    d.mean = (d.mean * kept + d.weight * value) >> 7;
    d.mean_square = (d.mean_square * kept + d.weight * value * value) >> 7;

    int32_t const variance = d.mean_square - d.mean * d.mean; // at most 65025
    if (variance <= d.min_variance) {
        d.stdev = d.min_stdev; // inverse_stdev keeps what the last real variance gave it
        return;
    }
    d.stdev = rk_fast_sqrt(variance);
    d.inverse_stdev = g_DivTable[d.stdev];
}

/// The same in fewer steps: a root only where the deviation moved, and in single precision, which is exact for a variance of
/// bytes. Kernel: as above.
inline void rk_distribution_update_fast(rk_distribution* distribution, int32_t value)
{
    rk_distribution& d = *distribution;
    if (d.unset) {
        rk_distribution_update(distribution, value);
        return;
    }
    int32_t const kept = rk_distribution_weight_one - d.weight;
    d.mean = (d.mean * kept + d.weight * value) >> 7;
    d.mean_square = (d.mean_square * kept + d.weight * value * value) >> 7;
    int32_t const variance = d.mean_square - d.mean * d.mean;
    if (variance <= d.min_variance) {
        d.stdev = d.min_stdev;
        return;
    }
    bool const moved = (uint32_t)(variance - d.stdev * d.stdev) > (uint32_t)(2 * d.stdev);
    if (moved)
        d.stdev = (int32_t)__builtin_sqrtf((float)variance);
    d.inverse_stdev = g_DivTable[d.stdev];
}
