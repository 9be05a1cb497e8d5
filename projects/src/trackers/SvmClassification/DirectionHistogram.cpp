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
    uint32_t count = 0;
    for (size_t x = 0; x < width; ++x)
        count += mask[x] != 0;
    return count;
}

/// |dx| and |dy| of a row of pixels that all have neighbours.
void gradientsOf(unsigned char const* gray, size_t stride, size_t count, uint16_t* dx, uint16_t* dy)
{
    unsigned char const* const above = gray - stride;
    unsigned char const* const below = gray + stride;
    for (size_t i = 0; i < count; ++i) {
        auto const right = static_cast<int16_t>(above[i + 1] + 2 * gray[i + 1] + below[i + 1]);
        auto const left = static_cast<int16_t>(above[i - 1] + 2 * gray[i - 1] + below[i - 1]);
        auto const top = static_cast<int16_t>(above[i - 1] + 2 * above[i] + above[i + 1]);
        auto const bottom = static_cast<int16_t>(below[i - 1] + 2 * below[i] + below[i + 1]);
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

/// Puts the strong pixels of a run to those that wait.
void DirectionHistogram::addRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count)
{
    constexpr size_t step = 8;
    std::array<uint16_t, run> dx, dy;
    std::array<unsigned char, run + step> strong = {}; // pixels behind the last one are weak
    gradientsOf(gray, stride, count, dx.data(), dy.data());
    for (size_t i = 0; i < count; ++i)
        strong[i] = (mask[i] != 0) & (dx[i] + dy[i] > weakLimit);
    for (size_t first = 0; first < count; first += step) {
        uint64_t any;
        std::memcpy(&any, &strong[first], sizeof(any));
        if (!any)
            continue;
        for (size_t i = first; i < std::min(first + step, count); ++i) {
            mDx[mWaiting] = dx[i];
            mDy[mWaiting] = dy[i];
            mWaiting += strong[i];
        }
    }
    if (mWaiting + run >= mDx.size())
        countStrong();
}

void DirectionHistogram::countStrong()
{
    std::array<uint16_t, std::tuple_size_v<decltype(mDx)>> places;
    for (size_t i = 0; i < mWaiting; ++i) {
        float const angle = rk_fast_atan_quad1(static_cast<float>(mDx[i]), static_cast<float>(mDy[i])) * degrees;
        auto const bin = static_cast<uint16_t>(static_cast<uint16_t>(static_cast<int32_t>(angle + 5.0f)) / 10);
        // Rounded to the nearest, halves up: there are no negative ones.
        float const rest = angle - static_cast<float>(10 * bin - 5);
        auto const whole = static_cast<int32_t>(rest);
        auto const part = whole + (rest - static_cast<float>(whole) >= 0.5f);
        places[i] = static_cast<uint16_t>(bin * parts + static_cast<uint16_t>(part));
    }
    for (size_t i = 0; i < mWaiting; ++i)
        ++mShares[places[i]];
    mStrong += static_cast<uint32_t>(mWaiting);
    mWaiting = 0;
}

void DirectionHistogram::addTo(int32_t* counters) const
{
    counters[0] += static_cast<int32_t>(mMasked - mStrong);
    for (size_t i = 0; i < mShares.size(); ++i) {
        auto const pixels = static_cast<int32_t>(mShares[i]);
        auto const part = static_cast<int32_t>(i % parts);
        counters[i / parts + 1] += pixels * (10 - part);
        counters[i / parts + 2] += pixels * part;
    }
}
