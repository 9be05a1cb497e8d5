#pragma once

#include <cstddef>
#include <cstdint>

struct rk_distribution;

/// Lets one channel of a run of pixels learn, and keeps the mirror in step. values and the mirror have a byte in every stride (1
/// or 4); a pixel whose byte in mask is 0 does not learn. Returns not 0 when a distribution does not fit the mirror.
using rk_background_learn_run = uint32_t (*)(rk_distribution* model, uint8_t* mirror_mean, uint8_t* mirror_inverse,
    uint8_t const* values, uint8_t const* mask, size_t pixels, size_t stride);

/// For the form in use; all give the same bytes.
rk_background_learn_run rk_background_learn();

/// Null in a build for another processor.
extern rk_background_learn_run const rk_background_learn_avx2;
