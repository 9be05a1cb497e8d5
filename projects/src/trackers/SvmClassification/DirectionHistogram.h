#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Histogram of the directions in which the edges of a region run: bin 0 counts the pixels without an edge worth the name; each
/// other pixel shares 10 out between the two bins whose centres lie on either side of its direction. Bins 1 to 11 are ten degrees
/// wide, with centres from -5 to 95; directions are folded into one quadrant. The gradient is that of rk_sobel_image.
class DirectionHistogram {
public:
    /// A one-channel picture, or a part of one: rows that are `stride` bytes apart.
    struct Plane {
        unsigned char const* pixels;
        size_t stride;
    };

    /// Takes in the pixels of gray, at least 3 by 3 of them, where mask is not 0. Those of the outermost rows and columns have no
    /// edge.
    DirectionHistogram(Plane gray, Plane mask, size_t width, size_t height);

    /// Adds the bins to 12 counters.
    void addTo(int32_t* counters) const;

private:
    static constexpr size_t run = 64; // pixels of a row that are worked on at a time

    void takeAnywhere(Plane gray, Plane mask, size_t width, size_t height);
    void takeWithAvx2(Plane gray, Plane mask, size_t width, size_t height);
    void take(Plane gray, Plane mask, size_t width, size_t height);
    void addRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count);
    void addShortRun(unsigned char const* gray, size_t stride, unsigned char const* mask, size_t count);
    void countStrong();

    uint32_t mMasked = 0;
    uint32_t mStrong = 0;
    // Strong pixels by their direction and 5, in degrees from 0 to 95. In four parts: neighbours tend to have one direction, and
    // no increment should wait for the one before it.
    std::array<std::array<uint32_t, 96>, 4> mPlaces = {};
    std::array<uint32_t, 4 * run> mGradients; // |dx| and, 16 bits up, |dy| of strong pixels not yet in mPlaces
    size_t mWaiting = 0;
};
