#include "camera/sources/Scaler.h"

#include <algorithm>
#include <numeric>

namespace camera {

// The weights of one target pixel add up to at most the source's width times its height.
static_assert(
    uint64_t(255) * MAX_PIXELS + MAX_PIXELS / 2 <= 0xffffffffu, "a weighted sum of bytes, and its rounding, fit 32 bits");

void Scaler::scale(Picture const& source, Picture& target, uint32_t width, uint32_t height)
{
    target.resize(width, height);
    mLumaX.build(source.width, width);
    mLumaY.build(source.height, height);
    mChromaX.build(source.chromaWidth(), target.chromaWidth());
    mChromaY.build(source.chromaHeight(), target.chromaHeight());
    scalePlane(source.luma(), target.luma(), mLumaX, mLumaY, 1);
    scalePlane(source.chroma(), target.chroma(), mChromaX, mChromaY, 2);
}

// On a ruler that both divide, a source pixel is `to` units long and a target pixel `from` units.
void Scaler::Axis::build(uint32_t newFrom, uint32_t newTo)
{
    if (from == newFrom && to == newTo)
        return;
    from = newFrom;
    to = newTo;
    uint32_t const common = std::gcd(from, to);
    uint32_t const sourceLength = to / common;
    total = from / common;
    first.clear();
    begin.assign(1, 0);
    weights.clear();
    for (uint32_t i = 0; i < to; ++i) {
        uint64_t const left = uint64_t(i) * total, right = left + total;
        uint64_t source = left / sourceLength;
        first.push_back(uint32_t(source));
        for (; source * sourceLength < right; ++source) {
            uint64_t const overlap = std::min(right, (source + 1) * sourceLength) - std::max(left, source * sourceLength);
            weights.push_back(uint32_t(overlap));
        }
        begin.push_back(uint32_t(weights.size()));
    }
}

void Scaler::scalePlane(uint8_t const* source, uint8_t* target, Axis const& x, Axis const& y, uint32_t channels)
{
    uint32_t const total = x.total * y.total;
    mRow.resize(size_t(x.to) * channels);
    for (uint32_t row = 0; row < y.to; ++row) {
        std::fill(mRow.begin(), mRow.end(), 0);
        for (uint32_t k = y.begin[row]; k < y.begin[row + 1]; ++k) {
            uint8_t const* const line = source + size_t(y.first[row] + k - y.begin[row]) * x.from * channels;
            for (uint32_t column = 0; column < x.to; ++column)
                for (uint32_t channel = 0; channel < channels; ++channel) {
                    uint8_t const* pixel = line + size_t(x.first[column]) * channels + channel;
                    uint32_t sum = 0;
                    for (uint32_t i = x.begin[column]; i < x.begin[column + 1]; ++i, pixel += channels)
                        sum += x.weights[i] * *pixel;
                    mRow[size_t(column) * channels + channel] += y.weights[k] * sum;
                }
        }
        for (uint32_t const sum : mRow)
            *target++ = uint8_t((sum + total / 2) / total);
    }
}

} // namespace camera
