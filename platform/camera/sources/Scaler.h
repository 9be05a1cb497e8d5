#pragma once

#include "camera/sources/Picture.h"

namespace camera {

/// Resamples pictures to one size by area: each pixel of the target is the mean of the source area that it covers, rounded to
/// nearest, in integer arithmetic, so that all machines give the same bytes. Not thread-safe: it keeps tables and scratch rows.
class Scaler {
public:
    /// target takes the size width x height (at least 1 each, at most MAX_PIXELS together); it must not be source.
    void scale(Picture const& source, Picture& target, uint32_t width, uint32_t height);

private:
    /// How the pixels of one axis of the target lie over those of the source.
    struct Axis {
        uint32_t from = 0;
        uint32_t to = 0;
        uint32_t total = 0;            // sum of the weights of one target pixel
        std::vector<uint32_t> first;   // for each target pixel its first source pixel, and where its weights begin
        std::vector<uint32_t> begin;   // one more entry than target pixels
        std::vector<uint32_t> weights; // one for each covered source pixel
        void build(uint32_t newFrom, uint32_t newTo);
    };

    void scalePlane(uint8_t const* source, uint8_t* target, Axis const& x, Axis const& y, uint32_t channels);

    Axis mLumaX, mLumaY, mChromaX, mChromaY;
    std::vector<uint32_t> mRow; // weighted sums of one target row
};

} // namespace camera
