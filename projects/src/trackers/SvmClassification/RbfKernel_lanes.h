#pragma once

// The body of the fast forms, included by one file for each width of vector. Everything has internal linkage and nothing comes
// from a header with inline functions: the linker must not hand code for one instruction set to another's callers.

#include "trackers/SvmClassification/RbfKernel.h"

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace {

#ifdef __AVX2__
constexpr size_t width = 4; // doubles of a register
#else
constexpr size_t width = 2;
#endif
constexpr size_t parts = RbfKernel::lanes / width;

using Lanes = double __attribute__((vector_size(width * sizeof(double))));
using Words = int64_t __attribute__((vector_size(width * sizeof(double))));
using Bits = uint64_t __attribute__((vector_size(width * sizeof(double)))); // wraps around where x is out of range

/// A bit for each lane of a comparison.
inline uint64_t bitsOf(Words mask)
{
#if defined(__AVX2__)
    return static_cast<uint64_t>(_mm256_movemask_pd((__m256d)mask));
#elif defined(__SSE2__)
    return static_cast<uint64_t>(_mm_movemask_pd((__m128d)mask));
#else
    return static_cast<uint64_t>(-mask[0] | -mask[1] << 1);
#endif
}

inline Lanes lookUp(double const* table, Words index)
{
#if defined(__AVX2__)
    return (Lanes)_mm256_i64gather_pd(table, (__m256i)index, sizeof(double));
#else
    return Lanes{table[index[0]], table[index[1]]};
#endif
}

/// exp(x). Lanes that are sure get their bit in `sure`.
inline Lanes exponential(Lanes x, uint64_t& sure)
{
    constexpr double range = 700;                  // beyond are numbers that are not normal
    constexpr double steps = 0x1.71547652b82fep+7; // roots / ln 2
    constexpr double stepHigh = 0x1.62e42fef8p-8;  // ln 2 / roots, short enough for exact multiples
    constexpr double stepLow = 0x1.1cf79abc9e3b4p-43;
    constexpr double toWhole = 0x1.8p52;           // a sum with it is rounded, and holds a whole number in its low bits
    constexpr double doubt = 0.024 * 0x1p-52;      // of the value: 0.011 for this error and 0.012 for the library's
    constexpr int64_t root = RbfKernel::roots - 1; // bits that choose the root
    constexpr int exponentShift = 52 - 7;          // from above those to a double's exponent

    Lanes const shifted = x * steps + toWhole;
    Words const number = (Words)shifted;
    Lanes const step = shifted - toWhole;
    Lanes const rest = (x - step * stepHigh) - step * stepLow; // at most half a step, 0.0028
    Lanes const scale = (Lanes)((Bits)lookUp(RbfKernel::table.high, number & root) + ((Bits)(number & ~root) << exponentShift));
    Lanes const square = rest * rest;
    Lanes const series = square * (0.5 + rest * (1.0 / 6)) + square * square * (1.0 / 24 + rest * (1.0 / 120));
    Lanes const more = scale * (rest + (lookUp(RbfKernel::table.tail, number & root) + series));
    Lanes const value = scale + more;
    Lanes const lost = more - (value - scale);
    sure = bitsOf(
        (value + (lost + value * doubt) == value) & (value + (lost - value * doubt) == value) & (x >= -range) & (x <= range));
    return value;
}

/// The squared distances of a block.
inline void distancesOf(double const* block, double const* input, size_t features, Lanes* sums)
{
    for (size_t feature = 0; feature < features; ++feature, block += RbfKernel::lanes)
        for (size_t i = 0; i < parts; ++i) {
            Lanes vectors;
            __builtin_memcpy(&vectors, block + i * width, sizeof(vectors));
            Lanes const difference = input[feature] - vectors;
            sums[i] += difference * difference;
        }
}

uint64_t run(double const* blocks, size_t blockCount, double const* input, size_t features, double minusGamma, double* exponents,
    double* values)
{
    uint64_t unsure = 0;
    for (size_t block = 0; block < blockCount; ++block) {
        Lanes sums[parts] = {};
        distancesOf(blocks + block * RbfKernel::lanes * features, input, features, sums);
        for (size_t i = 0; i < parts; ++i) {
            size_t const first = block * RbfKernel::lanes + i * width;
            uint64_t sure = 0;
            Lanes const exponent = minusGamma * sums[i];
            Lanes const value = exponential(exponent, sure);
            __builtin_memcpy(exponents + first, &exponent, sizeof(exponent));
            __builtin_memcpy(values + first, &value, sizeof(value));
            unsure |= (sure ^ ((uint64_t(1) << width) - 1)) << first;
        }
    }
    return unsure;
}

} // namespace
