#pragma once

#include "image/rk_image.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The first frames of a video as gray pictures of one size, in memory. A scaled picture is smoother than what a sensor of that
/// size gives, so each frame gets noise of its own.
class Clip {
public:
    static constexpr uint32_t period = 40; // ms

    /// source: as camera::openSource takes it. Ends the process with a message when it cannot be read or is too short.
    Clip(std::string const& source, uint32_t width, uint32_t height, uint32_t frames);

    uint32_t frames() const { return static_cast<uint32_t>(mPixels.size() / (size_t(mWidth) * mHeight)); }
    /// A view, which may be painted on.
    rk_image frame(uint32_t n)
    {
        uint32_t const size = mWidth * mHeight;
        return {mPixels.data() + size_t(n) * size, mWidth, mHeight, 1, size};
    }

private:
    void addNoise();

    uint32_t mWidth;
    uint32_t mHeight;
    std::vector<unsigned char> mPixels;
};
