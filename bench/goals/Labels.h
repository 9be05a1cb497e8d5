#pragma once

#include "goals/Samples.h"

#include <cstdint>

/// Connected components on drawn pictures of 1280 x 720.
namespace labels {

constexpr uint32_t width = 1280;
constexpr uint32_t height = 720;

Samples copies(); // memcpy of one such frame
Samples emptyFrame();
/// Blobs of 8 to 80 pixels on 11 % of the frame.
Samples blobs();
/// Every fourth pixel, at random; a square kernel of that size.
Samples noise(uint32_t kernel);

struct Cost {
    double seconds;
    double bytesPerLabel; // kept from frame to frame
};
/// So many specks apart from one another.
Cost specks(uint32_t count);

} // namespace labels
