#include "math/rk_running_avg.h"

int rk_running_avg_set_weight(rk_running_avg* average, float weight)
{
    if (!average || !(weight >= 0.0f && weight <= 1.0f)) // written so that a NaN is refused too
        return 0;
    average->weight = weight;
    average->complement = 1.0f - weight;
    return 1;
}

int rk_running_avg_reset(rk_running_avg* average, float weight)
{
    if (!average)
        return 0;
    average->value = 0.0f;
    average->started = 0;
    return rk_running_avg_set_weight(average, weight);
}

int rk_running_avg_add(rk_running_avg* average, float sample)
{
    if (!average)
        return 0;
    average->value = average->started ? sample * average->weight + average->value * average->complement : sample;
    average->started = 1;
    return 1;
}
