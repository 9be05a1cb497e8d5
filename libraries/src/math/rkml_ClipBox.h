#pragma once

#include "math/rkml_BoundingBox.h"

#include <algorithm>
#include <cstdint>

namespace rkml {

/// The part of a box that lies in a picture of width by height pixels. A box wholly outside becomes one without size, at the
/// nearest edge.
inline BoundingBox<int> clipBox(BoundingBox<int> const& box, unsigned int width, unsigned int height)
{
    // In 64 bits, so that no sum of a position and a size can wrap.
    auto const clip = [](int64_t position, int64_t size, int64_t limit, int& clippedPosition, int& clippedSize) {
        int64_t const begin = std::clamp<int64_t>(position, 0, limit);
        int64_t const end = std::clamp<int64_t>(position + size, begin, limit);
        clippedPosition = static_cast<int>(begin);
        clippedSize = static_cast<int>(end - begin);
    };
    BoundingBox<int> clipped;
    clip(box.x, box.width, width, clipped.x, clipped.width);
    clip(box.y, box.height, height, clipped.y, clipped.height);
    return clipped;
}

} // namespace rkml
