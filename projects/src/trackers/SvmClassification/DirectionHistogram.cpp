#include "trackers/SvmClassification/DirectionHistogram.h"

#include "image/rk_row.h"
#include "math/rk_fast.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

// What is compiled for one set of instructions takes in all that it calls: nobody else's copy may be made with them.
#define ALWAYS_INLINE inline __attribute__((always_inline))

namespace {

constexpr int16_t weakLimit = 199;   // highest |dx| + |dy| that has no direction worth counting
constexpr float degrees = 57.29578f; // in a radian
constexpr size_t step = 16;          // pixels that are worked on at once

/// How many of the bytes are not 0, eight at a time.
ALWAYS_INLINE uint32_t countOf(unsigned char const* mask, size_t width)
{
    constexpr uint64_t low = 0x7f7f7f7f7f7f7f7f, ones = 0x0101010101010101;
    uint32_t count = 0;
    size_t x = 0;
    for (uint64_t bytes; x + sizeof(bytes) <= width; x += sizeof(bytes)) {
        std::memcpy(&bytes, mask + x, sizeof(bytes));
        uint64_t const isSet = (((bytes & low) + low) | bytes) >> 7 & ones;
        count += static_cast<uint32_t>(isSet * ones >> 56);
    }
    for (; x < width; ++x)
        count += mask[x] != 0;
    return count;
}

/// Works on `count` elements, at least `step`, by whole steps; the last one may do some elements again.
template <class Work> ALWAYS_INLINE void inSteps(size_t count, Work work)
{
    for (size_t i = 0; i + step < count; i += step)
        work(i);
    work(count - step);
}

} // namespace

DirectionHistogram::DirectionHistogram(Plane gray, Plane mask, size_t width, size_t height)
{
    if (rk_row().form == rk_form_avx2)
        takeWithAvx2(gray, mask, width, height);
    else
        takeAnywhere(gray, mask, width, height);
}

// The same code, for two widths of vectors.

void DirectionHistogram::takeAnywhere(Plane gray, Plane mask, size_t width, size_t height)
{
    take(gray, mask, width, height);
}

#ifdef __x86_64__
__attribute__((target("avx2")))
#endif
void DirectionHistogram::takeWithAvx2(Plane gray, Plane mask, size_t width, size_t height)
{
    take(gray, mask, width, height);
}

ALWAYS_INLINE void DirectionHistogram::take(Plane gray, Plane mask, size_t width, size_t height)
{
    for (size_t y = 0; y < height; ++y) {
        unsigned char const* const inside = mask.pixels + y * mask.stride;
        mMasked += countOf(inside, width);
        if (y == 0 || y + 1 == height)
            continue;
        unsigned char const* const row = gray.pixels + y * gray.stride;
        // What lies beyond the end of a short run is there to be read where two more rows follow.
        bool const hasRoom = y + 2 < height && gray.stride >= step + 2 && mask.stride >= step + 2;
        for (size_t x = 1; x + 1 < width; x += run) {
            size_t const count = std::min(run, width - 1 - x);
            if (count >= step || hasRoom)
                addRun(row + x, gray.stride, inside + x, count);
            else
                addShortRun(row + x, gray.stride, inside + x, count);
        }
    }
    countStrong();
}

/// Puts the strong pixels of a run to those that wait. Reads a whole step at least.
ALWAYS_INLINE void DirectionHistogram::addRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    size_t const wide = std::max(count, step);
    unsigned char const *const above = gray - stride - 1, *const level = gray - 1, *const below = gray + stride - 1;
    constexpr size_t word = sizeof(uint64_t);
    static_assert(run % word == 0, "strong pixels are looked for by words");
    size_t const lastWord = (count - 1) / word * word; // its bytes behind the run are no strong pixels
    uint32_t gradients[run];
    unsigned char strong[run];
    std::memset(gradients + lastWord, 0, word * sizeof(*gradients));
    std::memset(strong + lastWord, 0, word);
    inSteps(
        wide, [&](size_t first) __attribute__((always_inline)) {
            for (size_t i = first; i < first + step; ++i) {
                // From the pixels each time: what one vector has just stored is not soon read across two.
                auto const right =
                    static_cast<int16_t>(above[i + 2] + 2 * level[i + 2] + below[i + 2] - above[i] - 2 * level[i] - below[i]);
                auto const down =
                    static_cast<int16_t>(below[i] + 2 * below[i + 1] + below[i + 2] - above[i] - 2 * above[i + 1] - above[i + 2]);
                auto const dx = static_cast<uint16_t>(std::max<int16_t>(right, static_cast<int16_t>(-right)));
                auto const dy = static_cast<uint16_t>(std::max<int16_t>(down, static_cast<int16_t>(-down)));
                gradients[i] = dx | uint32_t(dy) << 16;
                strong[i] = (mask[i] != 0) & (static_cast<int16_t>(dx + dy) > weakLimit);
            }
        });
    if (count < wide)
        std::memset(strong + count, 0, wide - count);
    for (size_t first = 0; first < count; first += word) {
        uint64_t any;
        std::memcpy(&any, &strong[first], word);
        if (!any)
            continue;
        for (size_t i = first; i < first + word; ++i) {
            mGradients[mWaiting] = gradients[i];
            mWaiting += strong[i];
        }
    }
    if (mWaiting + run >= mGradients.size())
        countStrong();
}

/// A copy of a whole step; what lies behind its end is outside.
ALWAYS_INLINE void DirectionHistogram::addShortRun(
    unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    constexpr size_t width = step + 2;
    unsigned char rows[3 * width] = {}, inside[step] = {};
    for (size_t i = 0; i < 3; ++i)
        std::memcpy(rows + i * width, gray + i * stride - stride - 1, count + 2);
    std::memcpy(inside, mask, count);
    addRun(rows + width + 1, width, inside, step);
}

/// A direction of d degrees has its place at d + 5, rounded: ten times its first bin, and the part of the second.
ALWAYS_INLINE void DirectionHistogram::countStrong()
{
    std::array<uint16_t, std::tuple_size_v<decltype(mGradients)>> places;
    for (size_t i = 0; i < mWaiting; ++i) {
        auto const dx = static_cast<float>(static_cast<int32_t>(mGradients[i] & 0xffff));
        auto const dy = static_cast<float>(static_cast<int32_t>(mGradients[i] >> 16));
        float const angle = rk_fast_atan_quad1(dx, dy) * degrees + 5.0f;
        auto const whole = static_cast<int32_t>(angle);
        places[i] = static_cast<uint16_t>(whole + (angle - static_cast<float>(whole) >= 0.5f));
    }
    for (size_t i = 0; i < mWaiting; ++i)
        ++mPlaces[i % mPlaces.size()][places[i]];
    mStrong += static_cast<uint32_t>(mWaiting);
    mWaiting = 0;
}

void DirectionHistogram::addTo(int32_t* counters) const
{
    counters[0] += static_cast<int32_t>(mMasked - mStrong);
    for (size_t place = 0; place < mPlaces[0].size(); ++place) {
        auto const pixels = static_cast<int32_t>(mPlaces[0][place] + mPlaces[1][place] + mPlaces[2][place] + mPlaces[3][place]);
        if (pixels == 0)
            continue;
        auto const part = static_cast<int32_t>(place % 10);
        counters[place / 10 + 1] += pixels * (10 - part);
        counters[place / 10 + 2] += pixels * part;
    }
}
