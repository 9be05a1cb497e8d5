#pragma once

// The body of the fast forms, included by one file for each instruction set. Everything has internal linkage and nothing comes
// from a header with inline functions: the linker must not hand code for one instruction set to another's callers.

#include "image/rk_row_forms.h"

#include <cstring>
#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace {

constexpr size_t block = 64;         // bytes: what fits the vector registers of every target at once, and a word of bits
constexpr size_t glance = 4 * block; // bytes that are looked over for anything that reaches a threshold at once

/// What a loop of more than a few steps a byte will need soon: the processor does not see as far by itself. A hint, so that the
/// address may lie behind the end.
inline void fetch_ahead(uint8_t const* bytes)
{
    __builtin_prefetch((void const*)((uintptr_t)bytes + 2048));
}

void difference(uint8_t const* __restrict a, uint8_t const* __restrict b, uint8_t* __restrict out, size_t count,
    uint8_t threshold, uint8_t value)
{
    for (size_t i = 0; i < count; ++i) {
        uint8_t const high = a[i] > b[i] ? a[i] : b[i];
        uint8_t const low = a[i] > b[i] ? b[i] : a[i];
        out[i] = (uint8_t)(high - low) > threshold ? value : 0;
    }
}

inline bool renew_run(
    uint8_t* __restrict a, uint8_t const* __restrict b, uint8_t* __restrict out, size_t count, uint8_t threshold, uint8_t value)
{
    uint8_t any = 0;
    for (size_t i = 0; i < count; ++i) {
        uint8_t const high = a[i] > b[i] ? a[i] : b[i];
        uint8_t const low = a[i] > b[i] ? b[i] : a[i];
        out[i] = (uint8_t)(high - low) > threshold ? value : 0;
        any |= out[i];
        a[i] = b[i];
    }
    return any != 0;
}

void renew(uint8_t* a, uint8_t const* b, uint8_t* out, size_t count, uint8_t threshold, uint8_t value, uint8_t* differs)
{
    size_t i = 0;
    for (; i + rk_row_run <= count; i += rk_row_run) {
        for (size_t line = 0; line < rk_row_run; line += block) {
            fetch_ahead(a + i + line);
            fetch_ahead(b + i + line);
        }
        *differs++ = renew_run(a + i, b + i, out + i, rk_row_run, threshold, value);
    }
    if (i < count)
        *differs = renew_run(a + i, b + i, out + i, count - i, threshold, value);
}

void difference_colour(uint8_t const* __restrict a, uint8_t const* __restrict b, uint8_t* __restrict out, size_t pixels,
    int32_t squared, uint8_t value)
{
    for (size_t i = 0; i < pixels; ++i) {
        int32_t const blue = a[4 * i] - b[4 * i];
        int32_t const green = a[4 * i + 1] - b[4 * i + 1];
        int32_t const red = a[4 * i + 2] - b[4 * i + 2];
        out[i] = blue * blue + green * green + red * red > squared ? value : 0;
    }
}

void running_sum(uint8_t* __restrict sum, uint8_t const* __restrict old, uint8_t const* __restrict fresh, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        sum[i] = (uint8_t)(sum[i] - old[i] + fresh[i]);
}

bool moving_sum(uint8_t* __restrict sum, uint8_t const* __restrict old, uint8_t const* __restrict fresh,
    uint8_t* __restrict motion, size_t count)
{
    uint8_t any = 0;
    for (size_t i = 0; i < count; ++i) {
        sum[i] = (uint8_t)(sum[i] - old[i] + fresh[i]);
        motion[i] = sum[i] ? 255 : 0;
        any |= sum[i];
    }
    return any != 0;
}

void at_least(uint8_t const* in, uint8_t* out, size_t count, uint8_t threshold)
{
    size_t i = 0;
    for (; i + block <= count; i += block) {
        fetch_ahead(in + i);
        fetch_ahead(out + i);
        for (size_t k = i; k < i + block; ++k)
            out[k] = in[k] >= threshold ? 255 : 0;
    }
    for (; i < count; ++i)
        out[i] = in[i] >= threshold ? 255 : 0;
}

void and3(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* __restrict out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = a[i] & b[i] & c[i];
}

void or3(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* __restrict out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = a[i] | b[i] | c[i];
}

#if defined(__AVX2__)

uint64_t pack_block(uint8_t const* in, uint8_t threshold)
{
    __m256i const limit = _mm256_set1_epi8((char)threshold);
    uint64_t word = 0;
    for (int half = 0; half < 2; ++half) {
        __m256i const bytes = _mm256_loadu_si256((__m256i const*)(in + 32 * half));
        __m256i const above = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, limit), bytes);
        word |= (uint64_t)(uint32_t)_mm256_movemask_epi8(above) << 32 * half;
    }
    return word;
}

void unpack_block(uint64_t word, uint8_t* out)
{
    __m256i const spread = _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
    __m256i const bit = _mm256_set1_epi64x((long long)0x8040201008040201);
    for (int half = 0; half < 2; ++half) {
        __m256i const bytes = _mm256_shuffle_epi8(_mm256_set1_epi32((int)(uint32_t)(word >> 32 * half)), spread);
        _mm256_storeu_si256((__m256i*)(out + 32 * half), _mm256_cmpeq_epi8(_mm256_and_si256(bytes, bit), bit));
    }
}

#else

#if defined(__SSE2__)

uint64_t pack_block(uint8_t const* in, uint8_t threshold)
{
    __m128i const limit = _mm_set1_epi8((char)threshold);
    uint64_t word = 0;
    for (int quarter = 0; quarter < 4; ++quarter) {
        __m128i const bytes = _mm_loadu_si128((__m128i const*)(in + 16 * quarter));
        __m128i const above = _mm_cmpeq_epi8(_mm_max_epu8(bytes, limit), bytes);
        word |= (uint64_t)(uint32_t)_mm_movemask_epi8(above) << 16 * quarter;
    }
    return word;
}

#else

/// Eight bytes of 0 or 1 become eight bits: each byte's bit is shifted to its place in the top byte of the product.
uint64_t gather_bits(uint8_t const* flags)
{
    uint64_t bytes;
    memcpy(&bytes, flags, 8);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    bytes = __builtin_bswap64(bytes);
#endif
    return bytes * 0x0102040810204080u >> 56;
}

uint64_t pack_block(uint8_t const* in, uint8_t threshold)
{
    uint8_t flags[block];
    for (size_t i = 0; i < block; ++i)
        flags[i] = in[i] >= threshold;
    uint64_t word = 0;
    for (size_t i = 0; i < block; i += 8)
        word |= gather_bits(flags + i) << i;
    return word;
}

#endif

struct BytesOfBits {
    uint8_t bytes[256][8];

    constexpr BytesOfBits()
        : bytes()
    {
        for (int bits = 0; bits < 256; ++bits)
            for (int i = 0; i < 8; ++i)
                bytes[bits][i] = bits >> i & 1 ? 255 : 0;
    }
};
constexpr BytesOfBits bytes_of_bits;

void unpack_block(uint64_t word, uint8_t* out)
{
    for (int i = 0; i < 8; ++i)
        memcpy(out + 8 * i, bytes_of_bits.bytes[word >> 8 * i & 255], 8);
}

#endif

/// Whether one of `glance` bytes reaches the threshold. Most of a foreground is empty: this is quicker than to build its words.
bool any_reaches(uint8_t const* in, uint8_t threshold)
{
    uint8_t most[block] = {};
    for (size_t i = 0; i < glance; i += block)
        for (size_t k = 0; k < block; ++k)
            most[k] = in[i + k] > most[k] ? in[i + k] : most[k];
    uint8_t reached = 0;
    for (size_t k = 0; k < block; ++k)
        reached |= most[k] >= threshold;
    return reached != 0;
}

bool pack(uint8_t const* in, size_t count, uint8_t threshold, uint64_t* bits)
{
    uint64_t any = 0;
    size_t i = 0;
    for (; i + block <= count; i += block) {
        if (i % glance == 0 && i + glance <= count && !any_reaches(in + i, threshold)) {
            memset(bits + i / block, 0, glance / 8);
            i += glance - block;
            continue;
        }
        uint64_t const word = pack_block(in + i, threshold);
        bits[i / block] = word;
        any |= word;
    }
    if (i == count)
        return any != 0;
    uint64_t word = 0;
    for (size_t rest = i; rest < count; ++rest)
        word |= (uint64_t)(in[rest] >= threshold) << (rest - i);
    bits[i / block] = word;
    return (any | word) != 0;
}

void unpack(uint64_t const* bits, size_t count, uint8_t* out)
{
    size_t i = 0;
    for (; i + block <= count; i += block)
        unpack_block(bits[i / block], out + i);
    for (; i < count; ++i)
        out[i] = bits[i / block] >> i % block & 1 ? 255 : 0;
}

bool two_valued(uint8_t const* in, size_t count)
{
    size_t i = 0;
    for (; i + block <= count; i += block) {
        uint8_t between = 0;
        for (size_t k = 0; k < block; ++k)
            between |= (uint8_t)(in[i + k] + 1) > 1; // 255 wraps to 0
        if (between)
            return false;
    }
    for (; i < count; ++i)
        if ((uint8_t)(in[i] + 1) > 1)
            return false;
    return true;
}

/// Counted in bytes, in runs of so many that no byte can overflow.
uint32_t count_within(uint8_t const* mask, uint8_t const* a, uint8_t const* b, size_t count, uint8_t threshold)
{
    constexpr size_t run = 224; // whole vectors
    uint32_t within = 0;
    for (size_t from = 0; from < count; from += run) {
        size_t const end = count - from < run ? count : from + run;
        uint8_t in_run = 0;
        for (size_t i = from; i < end; ++i) {
            uint8_t const brighter = a[i] > b[i] ? a[i] : b[i];
            in_run = (uint8_t)(in_run + ((mask[i] != 0) & (brighter >= threshold)));
        }
        within += in_run;
    }
    return within;
}

/// A distance beyond a byte stays at its end. Returns whether one is above 10.
inline bool distances(uint8_t const* __restrict values, uint8_t const* __restrict mean, uint8_t const* __restrict inverse,
    uint8_t* __restrict out, size_t count)
{
    uint8_t far = 0;
    for (size_t i = 0; i < count; ++i) {
        uint8_t const high = values[i] > mean[i] ? values[i] : mean[i];
        uint8_t const low = values[i] > mean[i] ? mean[i] : values[i];
        uint16_t const product = (uint16_t)((uint16_t)((uint16_t)(uint8_t)(high - low) * (uint16_t)inverse[i]) >> 7);
        uint8_t const tenths = (uint8_t)(product < 255 ? product : 255);
        out[i] = tenths;
        far |= tenths > 10;
    }
    return far != 0;
}

bool distance(uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t* out, size_t count)
{
    bool far = false;
    size_t i = 0;
    for (; i + block <= count; i += block)
        far |= distances(values + i, mean + i, inverse + i, out + i, block);
    return distances(values + i, mean + i, inverse + i, out + i, count - i) || far;
}

/// Where no distance counts, the table would give zeros only.
uint32_t strength_of(uint8_t const* tenths, bool far, uint8_t const* table, uint8_t* out, size_t count)
{
    if (!far) {
        memset(out, 0, count);
        return 0;
    }
    uint32_t differing = 0;
    for (size_t i = 0; i < count; ++i) {
        out[i] = table[tenths[i]];
        differing += out[i] != 0;
    }
    return differing;
}

uint32_t strength(
    uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t const* table, uint8_t* out, size_t count)
{
    uint8_t tenths[block];
    uint32_t differing = 0;
    size_t i = 0;
    for (; i + block <= count; i += block) {
        fetch_ahead(values + i);
        fetch_ahead(mean + i);
        fetch_ahead(inverse + i);
        fetch_ahead(out + i);
        bool const far = distances(values + i, mean + i, inverse + i, tenths, block);
        differing += strength_of(tenths, far, table, out + i, block);
    }
    bool const far = distances(values + i, mean + i, inverse + i, tenths, count - i);
    return differing + strength_of(tenths, far, table, out + i, count - i);
}

} // namespace
