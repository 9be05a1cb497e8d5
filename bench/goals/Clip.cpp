#include "goals/Clip.h"

#include "camera/sources/FrameSource.h"
#include "camera/sources/Scaler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

Clip::Clip(std::string const& source, uint32_t width, uint32_t height, uint32_t frames)
    : mWidth(width)
    , mHeight(height)
{
    try {
        auto const video = camera::openSource(source);
        camera::Picture picture, scaled;
        camera::Scaler scaler;
        for (uint32_t n = 0; n < frames && video->advance(); ++n) {
            video->picture(picture);
            scaler.scale(picture, scaled, width, height);
            mPixels.insert(mPixels.end(), scaled.luma(), scaled.luma() + scaled.lumaSize());
        }
    } catch (camera::SourceError const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::exit(1);
    }
    if (this->frames() < frames) {
        std::fprintf(stderr, "%s has %u frames; %u are needed.\n", source.c_str(), this->frames(), frames);
        std::exit(1);
    }
    addNoise();
}

/// The sum of four small numbers: a bell of standard deviation 2.2, -6 to 6.
void Clip::addNoise()
{
    uint32_t state = 12345;
    for (unsigned char& pixel : mPixels) {
        state = state * 1664525u + 1013904223u;
        int const noise = static_cast<int>((state >> 30) + (state >> 28 & 3) + (state >> 26 & 3) + (state >> 24 & 3)) - 6;
        pixel = static_cast<unsigned char>(std::clamp(pixel + noise, 0, 255));
    }
}
