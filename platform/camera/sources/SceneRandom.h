#pragma once

#include <cstdint>

namespace camera {

/// Seeded random numbers for scenes: the same on every machine, unlike those of the standard library's distributions.
/// (xorshift32 by G. Marsaglia, "Xorshift RNGs", 2003.)
class SceneRandom {
public:
    explicit SceneRandom(uint32_t seed)
        : mState(seed * 2654435761u | 1u)
    {
    }

    uint32_t next()
    {
        mState ^= mState << 13;
        mState ^= mState >> 17;
        mState ^= mState << 5;
        return mState;
    }

    /// From low to high, both included.
    int32_t range(int32_t low, int32_t high) { return low + int32_t((next() >> 8) % uint32_t(high - low + 1)); }

private:
    uint32_t mState;
};

} // namespace camera
