#pragma once

#include <cstdint>

/// value without its fraction. Below 0 gives 0, from 2^32 on all ones, no number 0: a plain cast is undefined there and
/// differs from processor to processor.
inline uint32_t rk_truncate_u32(float value)
{
    if (!(value > 0.0f))
        return 0;
    return value < 4294967296.0f ? static_cast<uint32_t>(value) : UINT32_MAX;
}
