// Compiled with -mavx2 on x86-64; see libraries/CMakeLists.txt. Nothing in here may come from a header with inline functions of
// more than this file: the linker must not hand code for AVX2 to others.
#include "detection/rk_background_learn.h"

#ifdef __AVX2__

#include <immintrin.h>

namespace {

constexpr size_t group = 8; // pixels

/// Bytes: a group takes so many steps that the processor sees only some groups ahead by itself, too few to keep memory busy.
constexpr size_t ahead = 4096;

/// Eight distributions, field by field.
struct Group {
    __m256i mean, mean_square, stdev, weight;
    __m256i min_variance, min_stdev, inverse_stdev, unset;
};

/// Four words of eight records, the first four in the low lanes: pixels become fields.
inline void split(__m128i const* records, __m256i& first, __m256i& second, __m256i& third, __m256i& fourth)
{
    auto const pair = [=](size_t k) {
        return _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(records + 2 * k)), _mm_loadu_si128(records + 2 * (k + 4)), 1);
    };
    __m256i const a = pair(0), b = pair(1), c = pair(2), d = pair(3);
    __m256i const ab = _mm256_unpacklo_epi32(a, b), cd = _mm256_unpacklo_epi32(c, d);
    first = _mm256_unpacklo_epi64(ab, cd);
    second = _mm256_unpackhi_epi64(ab, cd);
    __m256i const abHigh = _mm256_unpackhi_epi32(a, b), cdHigh = _mm256_unpackhi_epi32(c, d);
    third = _mm256_unpacklo_epi64(abHigh, cdHigh);
    fourth = _mm256_unpackhi_epi64(abHigh, cdHigh);
}

/// The way back.
inline void join(__m128i* records, __m256i first, __m256i second, __m256i third, __m256i fourth)
{
    auto const store = [=](size_t k, __m256i two) {
        _mm_storeu_si128(records + 2 * k, _mm256_castsi256_si128(two));
        _mm_storeu_si128(records + 2 * (k + 4), _mm256_extracti128_si256(two, 1));
    };
    __m256i const front = _mm256_unpacklo_epi32(first, second), back = _mm256_unpacklo_epi32(third, fourth);
    store(0, _mm256_unpacklo_epi64(front, back));
    store(1, _mm256_unpackhi_epi64(front, back));
    __m256i const frontHigh = _mm256_unpackhi_epi32(first, second), backHigh = _mm256_unpackhi_epi32(third, fourth);
    store(2, _mm256_unpacklo_epi64(frontHigh, backHigh));
    store(3, _mm256_unpackhi_epi64(frontHigh, backHigh));
}

/// One sample for each of eight distributions, as rk_distribution_update takes it. x: the values, 0 to 255. Where isOld is set
/// nothing changes.
inline void update(Group& d, __m256i x, __m256i isOld)
{
    __m256i const one = _mm256_set1_epi32(128);
    __m256i const kept = _mm256_sub_epi32(one, d.weight);
    __m256i const square = _mm256_mullo_epi16(x, x);
    auto const blend = [&](__m256i old, __m256i fresh) {
        return _mm256_srai_epi32(_mm256_add_epi32(_mm256_mullo_epi32(old, kept), _mm256_mullo_epi32(d.weight, fresh)), 7);
    };
    __m256i const m = blend(d.mean, x);
    __m256i const q = blend(d.mean_square, square);
    __m256i const variance = _mm256_sub_epi32(q, _mm256_mullo_epi32(m, m));
    // Both roundings are exact: a variance of bytes and 1280 are far below 2^24, and no root or quotient lies closer below a
    // whole number than a float can tell.
    __m256 const root = _mm256_floor_ps(_mm256_sqrt_ps(_mm256_cvtepi32_ps(variance)));
    __m256i const inverse = _mm256_cvttps_epi32(_mm256_div_ps(_mm256_set1_ps(1280.0f), root));

    __m256i const isSeed = _mm256_xor_si256(_mm256_cmpeq_epi32(d.unset, _mm256_setzero_si256()), _mm256_set1_epi32(-1));
    __m256i const isNoisy = _mm256_andnot_si256(isSeed, _mm256_cmpgt_epi32(variance, d.min_variance));
    auto const learned = [=](__m256i old, __m256i fresh) { return _mm256_blendv_epi8(fresh, old, isOld); };
    d.mean = learned(d.mean, _mm256_blendv_epi8(m, x, isSeed));
    d.mean_square = learned(d.mean_square, _mm256_blendv_epi8(q, square, isSeed));
    d.stdev = learned(d.stdev, _mm256_blendv_epi8(d.min_stdev, _mm256_cvttps_epi32(root), isNoisy));
    d.inverse_stdev = learned(d.inverse_stdev, _mm256_blendv_epi8(d.inverse_stdev, inverse, isNoisy));
    d.unset = _mm256_and_si256(d.unset, isOld);
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
    if (_mm256_movemask_epi8(isOld) == -1)
        return _mm256_setzero_si256();
    auto* const halves = (__m128i*)records;
    for (size_t line = 0; line < sizeof(__m256i) * group; line += 64)
        _mm_prefetch((char const*)((uintptr_t)records + ahead + line), _MM_HINT_T0);
    Group d;
    split(halves, d.mean, d.mean_square, d.stdev, d.weight);
    split(halves + 1, d.min_variance, d.min_stdev, d.inverse_stdev, d.unset);
    update(d, gather<Stride>(values), isOld);
    scatter<Stride>(d.mean, isOld, mirror_mean);
    scatter<Stride>(d.inverse_stdev, isOld, mirror_inverse);
    join(halves, d.mean, d.mean_square, d.stdev, d.weight);
    join(halves + 1, d.min_variance, d.min_stdev, d.inverse_stdev, d.unset);
    return _mm256_andnot_si256(isOld, _mm256_or_si256(d.mean, d.inverse_stdev));
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
