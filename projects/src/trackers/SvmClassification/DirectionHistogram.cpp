#include "trackers/SvmClassification/DirectionHistogram.h"

#include "math/rk_fast.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t weakLimit = 199;   // highest |dx| + |dy| that has no direction worth counting
constexpr float degrees = 57.29578f; // in a radian

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

/// |dx| and |dy| of `count` pixels behind the first of three rows.
void gradientsOf(
    unsigned char const* above, unsigned char const* row, unsigned char const* below, size_t count, uint16_t* dx, uint16_t* dy)
{
    for (size_t i = 0; i < count; ++i) {
        auto const left = static_cast<int16_t>(above[i] + 2 * row[i] + below[i]);
        auto const right = static_cast<int16_t>(above[i + 2] + 2 * row[i + 2] + below[i + 2]);
        auto const top = static_cast<int16_t>(above[i] + 2 * above[i + 1] + above[i + 2]);
        auto const bottom = static_cast<int16_t>(below[i] + 2 * below[i + 1] + below[i + 2]);
        dx[i] = static_cast<uint16_t>(std::max(right, left) - std::min(right, left));
        dy[i] = static_cast<uint16_t>(std::max(top, bottom) - std::min(top, bottom));
    }
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
        for (size_t x = 1; x + 1 < width; x += run)
            addRun(row + x, gray.stride, inside + x, std::min(run, width - 1 - x));
    }
    countStrong();
}

/// Puts the strong pixels of a run to those that wait. The run is copied to rows whose length is a multiple of what is worked on
/// at once; what lies behind its end is outside.
void DirectionHistogram::addRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    constexpr size_t step = 16;
    static_assert(run % step == 0, "a run is worked on in whole steps");
    size_t const padded = (count + step - 1) / step * step;
    unsigned char rows[3][run + 2];
    for (size_t i = 0; i < 3; ++i) {
        std::memset(rows[i] + padded + 2 - step, 0, step);
        std::memcpy(rows[i], gray + i * stride - stride - 1, count + 2);
    }
    unsigned char inside[run];
    std::memset(inside + padded - step, 0, step);
    std::memcpy(inside, mask, count);
    uint16_t dx[run], dy[run];
    unsigned char strong[run];
    gradientsOf(rows[0], rows[1], rows[2], padded, dx, dy);
    for (size_t i = 0; i < padded; ++i)
        strong[i] = (inside[i] != 0) & (dx[i] + dy[i] > weakLimit);
    constexpr size_t word = sizeof(uint64_t);
    for (size_t first = 0; first < padded; first += word) {
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
