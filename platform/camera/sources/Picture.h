#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace camera {

/// Most pixels of a frame. With it, sums of bytes weighted by areas fit 32 bits (see Scaler).
inline constexpr uint32_t MAX_PIXELS = 1u << 24;

/// One frame as the camera hands it out: width x height bytes of luma row by row, then one (Cb, Cr) pair for each 2 x 2 block,
/// row by row; at an odd width or height the last block is half a block. Luma 0 is black, chroma 128 is neutral.
struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> bytes;

    /// Sets the size; the contents are then unspecified. Allocates only when it grows.
    void resize(uint32_t newWidth, uint32_t newHeight)
    {
        width = newWidth;
        height = newHeight;
        bytes.resize(lumaSize() + size_t(2) * chromaWidth() * chromaHeight());
    }

    /// In pairs.
    uint32_t chromaWidth() const { return (width + 1) / 2; }
    uint32_t chromaHeight() const { return (height + 1) / 2; }

    size_t lumaSize() const { return size_t(width) * height; }
    uint8_t* luma() { return bytes.data(); }
    uint8_t const* luma() const { return bytes.data(); }
    uint8_t* chroma() { return bytes.data() + lumaSize(); }
    uint8_t const* chroma() const { return bytes.data() + lumaSize(); }

    bool operator==(Picture const&) const = default;
};

} // namespace camera
