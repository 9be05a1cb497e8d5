#include "trackers/SvmClassification/DirectionHistogram.h"

#include "math/rk_fast.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int16_t weakLimit = 199;   // highest |dx| + |dy| that has no direction worth counting
constexpr float degrees = 57.29578f; // in a radian
constexpr size_t step = 16;          // pixels that are worked on at once

uint32_t countOf(unsigned char const* mask, size_t width)
{
    constexpr size_t most = 255; // a byte holds no more
    uint32_t count = 0;
    for (size_t first = 0; first < width; first += most) {
        uint8_t part = 0;
        for (size_t x = first; x < std::min(first + most, width); ++x)
            part = static_cast<uint8_t>(part + (mask[x] != 0));
        count += part;
    }
    return count;
}

/// Works on `count` elements, at least `step`, by whole steps; the last one may do some elements again.
template <class Work> inline void inSteps(size_t count, Work work)
{
    for (size_t i = 0; i + step < count; i += step)
        work(i);
    work(count - step);
}

} // namespace

DirectionHistogram::DirectionHistogram(Plane gray, Plane mask, size_t width, size_t height)
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
void DirectionHistogram::addRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    size_t const wide = std::max(count, step);
    int16_t sums[run + 2], differences[run + 2]; // down the columns, from the one before the run to the one behind it
    unsigned char const* const above = gray - stride - 1;
    inSteps(wide + 2, [&](size_t first) {
        for (size_t i = first; i < first + step; ++i) {
            sums[i] = static_cast<int16_t>(above[i] + 2 * above[i + stride] + above[i + 2 * stride]);
            differences[i] = static_cast<int16_t>(above[i + 2 * stride] - above[i]);
        }
    });
    constexpr size_t word = sizeof(uint64_t);
    static_assert(run % word == 0, "strong pixels are looked for by words");
    size_t const lastWord = (count - 1) / word * word; // its bytes behind the run are no strong pixels
    uint16_t dx[run], dy[run];
    unsigned char strong[run];
    std::memset(dx + lastWord, 0, word * sizeof(*dx));
    std::memset(dy + lastWord, 0, word * sizeof(*dy));
    std::memset(strong + lastWord, 0, word);
    inSteps(wide, [&](size_t first) {
        for (size_t i = first; i < first + step; ++i) {
            auto const right = static_cast<int16_t>(sums[i + 2] - sums[i]);
            auto const down = static_cast<int16_t>(differences[i] + 2 * differences[i + 1] + differences[i + 2]);
            dx[i] = static_cast<uint16_t>(std::max<int16_t>(right, static_cast<int16_t>(-right)));
            dy[i] = static_cast<uint16_t>(std::max<int16_t>(down, static_cast<int16_t>(-down)));
            strong[i] = (mask[i] != 0) & (static_cast<int16_t>(dx[i] + dy[i]) > weakLimit);
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
            mDx[mWaiting] = dx[i];
            mDy[mWaiting] = dy[i];
            mWaiting += strong[i];
        }
    }
    if (mWaiting + run >= mDx.size())
        countStrong();
}

/// A copy of a whole step; what lies behind its end is outside.
void DirectionHistogram::addShortRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    constexpr size_t width = step + 2;
    unsigned char rows[3 * width] = {}, inside[step] = {};
    for (size_t i = 0; i < 3; ++i)
        std::memcpy(rows + i * width, gray + i * stride - stride - 1, count + 2);
    std::memcpy(inside, mask, count);
    addRun(rows + width + 1, width, inside, step);
}

/// A direction of d degrees has its place at d + 5, rounded: ten times its first bin, and the part of the second.
void DirectionHistogram::countStrong()
{
    std::array<uint16_t, std::tuple_size_v<decltype(mDx)>> places;
    for (size_t i = 0; i < mWaiting; ++i) {
        float const angle = rk_fast_atan_quad1(static_cast<float>(mDx[i]), static_cast<float>(mDy[i])) * degrees + 5.0f;
        auto const whole = static_cast<int32_t>(angle);
        places[i] = static_cast<uint16_t>(whole + (angle - static_cast<float>(whole) >= 0.5f));
    }
    for (size_t i = 0; i < mWaiting; ++i)
        ++mPlaces[places[i]];
    mStrong += static_cast<uint32_t>(mWaiting);
    mWaiting = 0;
}

void DirectionHistogram::addTo(int32_t* counters) const
{
    counters[0] += static_cast<int32_t>(mMasked - mStrong);
    for (size_t place = 0; place < mPlaces.size(); ++place) {
        auto const pixels = static_cast<int32_t>(mPlaces[place]);
        auto const part = static_cast<int32_t>(place % 10);
        counters[place / 10 + 1] += pixels * (10 - part);
        counters[place / 10 + 2] += pixels * part;
    }
}
