#include "detection/rk_distribution.h"

#include <cmath>

uint8_t g_CompTable[100];
uint16_t g_DivTable[1280];

namespace {

constexpr int32_t scale = 1280;     // of inverse_stdev
constexpr int32_t full_tenths = 10; // up to one standard deviation the membership is full

uint8_t membership_at(uint32_t tenths)
{
    if (tenths <= full_tenths)
        return 255;
    float const stdevs = (float)tenths / 10.0f;
    return (uint8_t)(255.0f / (stdevs * stdevs));
}

} // namespace

int rk_distribution_init()
{
    for (uint32_t tenths = 0; tenths < 100; ++tenths)
        g_CompTable[tenths] = membership_at(tenths);

    g_DivTable[0] = scale;
    for (int32_t stdev = 1; stdev < scale; ++stdev)
        g_DivTable[stdev] = (uint16_t)(scale / stdev);
    return 1;
}

int rk_distribution_reset(rk_distribution* distribution)
{
    if (!distribution)
        return 0;
    distribution->unset = 255;
    distribution->stdev = 255;
    distribution->mean = 0;
    distribution->mean_square = 0;
    distribution->min_variance = 0;
    distribution->min_stdev = 0;
    return 1;
}

int rk_distribution_set_weight(rk_distribution* distribution, float weight)
{
    if (!distribution || !(weight >= 0.0f && weight <= 1.0f)) // written so that a NaN is refused too
        return 0;
    distribution->weight = (int32_t)std::floor(weight * (float)rk_distribution_weight_one);
    return 1;
}

int rk_distribution_set_min_stdev(rk_distribution* distribution, uint32_t stdev)
{
    if (!distribution || stdev == 0 || stdev > 46340)
        return 0;
    distribution->min_stdev = (int32_t)stdev;
    distribution->min_variance = (int32_t)(stdev * stdev);
    return 1;
}
