#pragma once

#include "image/rk_image.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Real frames for measurements: the first 20 seconds of the video that the environment variable CONTRAFLOW_BENCH_VIDEO names
/// (a path, or scene:NAME; scene:street by default), as gray pictures of 640 x 480 at 25 frames a second, in memory.
class Footage {
public:
    static constexpr uint32_t width = 640;
    static constexpr uint32_t height = 480;
    static constexpr uint32_t period = 40;       // ms
    static constexpr uint32_t framesMax = 500;   // 20 s
    static constexpr uint32_t learnFrames = 126; // 5 s and one frame, in which the analysis learns

    /// Read at the first call. Ends the process with a message when the video cannot be read.
    static Footage const& get();

    /// Reads the same frames again, from the video to pictures of that size, without keeping them. Returns their number.
    static uint32_t decode();

    uint32_t frames() const { return static_cast<uint32_t>(mPixels.size() / (width * height)); }
    /// A view; frame n lies at n * period.
    rk_image frame(uint32_t n) const
    {
        return {const_cast<unsigned char*>(mPixels.data()) + std::size_t(n) * width * height, width, height, 1, width * height};
    }

private:
    Footage();

    std::vector<unsigned char> mPixels;
};
