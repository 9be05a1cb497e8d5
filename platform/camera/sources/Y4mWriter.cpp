#include "camera/sources/Y4mWriter.h"

#include <stdexcept>

namespace camera {

Y4mWriter::Y4mWriter(std::ostream& stream, uint32_t width, uint32_t height, FrameRate rate)
    : mStream(stream)
    , mWidth(width)
    , mHeight(height)
{
    mStream << "YUV4MPEG2 W" << width << " H" << height << " F" << rate.numerator << ":" << rate.denominator
            << " Ip A1:1 C420jpeg XCOLORRANGE=FULL\n";
}

void Y4mWriter::write(Picture const& picture)
{
    if (picture.width != mWidth || picture.height != mHeight)
        throw std::invalid_argument("a Y4M stream holds pictures of one size");
    size_t const blocks = size_t(picture.chromaWidth()) * picture.chromaHeight();
    mPlanes.resize(2 * blocks);
    for (size_t i = 0; i < blocks; ++i) {
        mPlanes[i] = picture.chroma()[2 * i];
        mPlanes[blocks + i] = picture.chroma()[2 * i + 1];
    }
    mStream << "FRAME\n";
    mStream.write(reinterpret_cast<char const*>(picture.luma()), std::streamsize(picture.lumaSize()));
    mStream.write(reinterpret_cast<char const*>(mPlanes.data()), std::streamsize(mPlanes.size()));
}

} // namespace camera
