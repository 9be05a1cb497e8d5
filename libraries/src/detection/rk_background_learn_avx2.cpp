// Compiled with -mavx2 on x86-64; see libraries/CMakeLists.txt. Nothing in here may come from a header with inline functions of
// more than this file: the linker must not hand code for AVX2 to others.
#include "detection/rk_background_learn.h"

#ifdef __AVX2__

#include <immintrin.h>

namespace {

constexpr size_t group = 8; // pixels, and words of a distribution

/// Rows become columns: eight distributions become their eight fields, and back.
inline void transpose(__m256i (&r)[8])
{
    __m256i t[8], u[8];
    for (int i = 0; i < 8; i += 2) {
        t[i] = _mm256_unpacklo_epi32(r[i], r[i + 1]);
        t[i + 1] = _mm256_unpackhi_epi32(r[i], r[i + 1]);
    }
    for (int i = 0; i < 8; i += 4) {
        u[i] = _mm256_unpacklo_epi64(t[i], t[i + 2]);
        u[i + 1] = _mm256_unpackhi_epi64(t[i], t[i + 2]);
        u[i + 2] = _mm256_unpacklo_epi64(t[i + 1], t[i + 3]);
        u[i + 3] = _mm256_unpackhi_epi64(t[i + 1], t[i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
        r[i] = _mm256_permute2x128_si256(u[i], u[i + 4], 0x20);
        r[i + 4] = _mm256_permute2x128_si256(u[i], u[i + 4], 0x31);
    }
}

enum Field { mean, mean_square, stdev, weight, min_variance, min_stdev, inverse_stdev, unset };

/// One sample for each of eight distributions, as rk_distribution_update takes it. x: the values, 0 to 255.
inline void update(__m256i (&d)[8], __m256i x)
{
    __m256i const one = _mm256_set1_epi32(128);
    __m256i const kept = _mm256_sub_epi32(one, d[weight]);
    __m256i const square = _mm256_mullo_epi32(x, x);
    auto const blend = [&](__m256i old, __m256i fresh) {
        return _mm256_srai_epi32(_mm256_add_epi32(_mm256_mullo_epi32(old, kept), _mm256_mullo_epi32(d[weight], fresh)), 7);
    };
    __m256i const m = blend(d[mean], x);
    __m256i const q = blend(d[mean_square], square);
    __m256i const variance = _mm256_sub_epi32(q, _mm256_mullo_epi32(m, m));
    // Both roundings are exact: a variance of bytes and 1280 are far below 2^24, and no root or quotient lies closer below a
    // whole number than a float can tell.
    __m256 const root = _mm256_floor_ps(_mm256_sqrt_ps(_mm256_cvtepi32_ps(variance)));
    __m256i const inverse = _mm256_cvttps_epi32(_mm256_div_ps(_mm256_set1_ps(1280.0f), root));

    __m256i const isNoisy = _mm256_cmpgt_epi32(variance, d[min_variance]);
    __m256i const isSeed = _mm256_xor_si256(_mm256_cmpeq_epi32(d[unset], _mm256_setzero_si256()), _mm256_set1_epi32(-1));
    __m256i const hasInverse = _mm256_andnot_si256(isSeed, isNoisy);
    d[mean] = _mm256_blendv_epi8(m, x, isSeed);
    d[mean_square] = _mm256_blendv_epi8(q, square, isSeed);
    d[stdev] = _mm256_blendv_epi8(d[min_stdev], _mm256_cvttps_epi32(root), hasInverse);
    d[inverse_stdev] = _mm256_blendv_epi8(d[inverse_stdev], inverse, hasInverse);
    d[unset] = _mm256_setzero_si256();
}

template <size_t Stride> inline __m256i gather(uint8_t const* bytes)
{
    if (Stride == 1)
        return _mm256_cvtepu8_epi32(_mm_loadl_epi64((__m128i const*)bytes));
    return _mm256_setr_epi32(bytes[0], bytes[Stride], bytes[2 * Stride], bytes[3 * Stride], bytes[4 * Stride], bytes[5 * Stride],
        bytes[6 * Stride], bytes[7 * Stride]);
}

/// The lowest bytes of eight words, where a word of isOld is 0.
template <size_t Stride> inline void scatter(__m256i words, __m256i isOld, uint8_t* bytes)
{
    __m256i const lowest = _mm256_setr_epi64x(0x0c080400, 0, 0x0c080400, 0);
    auto const narrow = [=](__m256i wide) {
        __m256i const low = _mm256_shuffle_epi8(wide, lowest);
        return _mm_unpacklo_epi32(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1));
    };
    __m128i const fresh = narrow(words);
    if (Stride == 1) {
        __m128i const old = _mm_loadl_epi64((__m128i const*)bytes);
        _mm_storel_epi64((__m128i*)bytes, _mm_blendv_epi8(fresh, old, narrow(isOld)));
        return;
    }
    uint64_t const values = (uint64_t)_mm_cvtsi128_si64(fresh);
    uint64_t const kept = (uint64_t)_mm_cvtsi128_si64(narrow(isOld));
    for (size_t i = 0; i < group; ++i)
        if (!(kept >> 8 * i & 1))
            bytes[Stride * i] = (uint8_t)(values >> 8 * i);
}

/// Eight pixels. Returns what does not fit the mirror.
template <size_t Stride>
inline __m256i learn_group(
    __m256i* records, uint8_t* mirror_mean, uint8_t* mirror_inverse, uint8_t const* values, uint8_t const* mask)
{
    __m256i const isOld = _mm256_cmpeq_epi32(gather<1>(mask), _mm256_setzero_si256());
    int const kept = _mm256_movemask_ps(_mm256_castsi256_ps(isOld));
    if (kept == 255)
        return _mm256_setzero_si256();
    __m256i d[8];
    for (size_t k = 0; k < group; ++k)
        d[k] = _mm256_loadu_si256(records + k);
    transpose(d);
    update(d, gather<Stride>(values));
    scatter<Stride>(d[mean], isOld, mirror_mean);
    scatter<Stride>(d[inverse_stdev], isOld, mirror_inverse);
    __m256i const misfit = _mm256_andnot_si256(isOld, _mm256_or_si256(d[mean], d[inverse_stdev]));
    transpose(d);
    for (size_t k = 0; k < group; ++k)
        if (!(kept >> k & 1))
            _mm256_storeu_si256(records + k, d[k]);
    return misfit;
}

template <size_t Stride>
uint32_t learn(rk_distribution* model, uint8_t* mirror_mean, uint8_t* mirror_inverse, uint8_t const* values, uint8_t const* mask,
    size_t pixels)
{
    auto* const records = (__m256i*)model;
    __m256i misfit = _mm256_setzero_si256();
    size_t i = 0;
    for (; i + group <= pixels; i += group)
        misfit = _mm256_or_si256(misfit,
            learn_group<Stride>(
                records + i, mirror_mean + Stride * i, mirror_inverse + Stride * i, values + Stride * i, mask + i));
    if (size_t const rest = pixels - i) {
        // The last group is filled up with pixels that do not learn.
        __m256i lastRecords[group] = {};
        uint8_t lastMean[4 * group] = {}, lastInverse[4 * group] = {}, lastValues[4 * group] = {}, lastMask[group] = {};
        size_t const bytes = Stride * (rest - 1) + 1;
        __builtin_memcpy(lastRecords, records + i, rest * sizeof(__m256i));
        __builtin_memcpy(lastMean, mirror_mean + Stride * i, bytes);
        __builtin_memcpy(lastInverse, mirror_inverse + Stride * i, bytes);
        __builtin_memcpy(lastValues, values + Stride * i, bytes);
        __builtin_memcpy(lastMask, mask + i, rest);
        misfit = _mm256_or_si256(misfit, learn_group<Stride>(lastRecords, lastMean, lastInverse, lastValues, lastMask));
        __builtin_memcpy(records + i, lastRecords, rest * sizeof(__m256i));
        __builtin_memcpy(mirror_mean + Stride * i, lastMean, bytes);
        __builtin_memcpy(mirror_inverse + Stride * i, lastInverse, bytes);
    }
    return !_mm256_testz_si256(misfit, _mm256_set1_epi32(~255));
}

uint32_t learn_any(rk_distribution* model, uint8_t* mirror_mean, uint8_t* mirror_inverse, uint8_t const* values,
    uint8_t const* mask, size_t pixels, size_t stride)
{
    return stride == 1 ? learn<1>(model, mirror_mean, mirror_inverse, values, mask, pixels)
                       : learn<4>(model, mirror_mean, mirror_inverse, values, mask, pixels);
}

} // namespace

rk_background_learn_run const rk_background_learn_avx2 = learn_any;

#else

rk_background_learn_run const rk_background_learn_avx2 = nullptr;

#endif
