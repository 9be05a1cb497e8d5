#pragma once

#include "camera/sources/FrameRate.h"
#include "camera/sources/Picture.h"

#include <ostream>
#include <vector>

namespace camera {

/// Writes pictures as a YUV4MPEG2 stream, C420jpeg, which Y4mSource reads back byte for byte.
class Y4mWriter {
public:
    /// Writes the header. stream must outlive the writer; its state tells of failures.
    Y4mWriter(std::ostream& stream, uint32_t width, uint32_t height, FrameRate rate);

    /// Throws std::invalid_argument for a picture of another size.
    void write(Picture const& picture);

private:
    std::ostream& mStream;
    uint32_t const mWidth;
    uint32_t const mHeight;
    std::vector<uint8_t> mPlanes; // chroma, separated
};

} // namespace camera
