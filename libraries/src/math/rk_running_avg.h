#pragma once

#include <cstdint>

/// Exponentially weighted running average.
struct rk_running_avg {
    float value;      // the average; the first sample once started
    float weight;     // of a new sample, 0.0 to 1.0
    float complement; // 1 - weight
    uint8_t started;  // 0 until the first sample has been taken
};

/// Stores the weight of new samples; the average itself stays. Returns 0, with nothing changed, for a missing record or
/// a weight outside 0.0 to 1.0.
int rk_running_avg_set_weight(rk_running_avg* average, float weight);

/// Forgets all samples, then sets the weight as rk_running_avg_set_weight does, and returns what that returns.
int rk_running_avg_reset(rk_running_avg* average, float weight);

/// Takes a sample: the first one becomes the average, a later one is blended in with `weight`. Returns 0 for a missing
/// record.
int rk_running_avg_add(rk_running_avg* average, float sample);
