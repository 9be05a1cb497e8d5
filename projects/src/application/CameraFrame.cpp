#include "application/CameraFrame.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rk_clock.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "video/rkvl_Resolution.h"

#include <algorithm>

namespace {

/// What the chroma of a block adds to the luma of its pixels; red and blue within -261 to 258, green within -125 to 123.
struct Chroma {
    int32_t blue;
    int32_t green; // to be subtracted
    int32_t red;
};

// Coefficients of ITU-R BT.601 for full-range colour, in 1/1024; the shifts keep the sign.
Chroma chromaOf(unsigned char const* pair)
{
    int32_t const c0 = pair[0] - 128;
    int32_t const c1 = pair[1] - 128;
    return {(2081 * c0) >> 10, (594 * c0 + 404 * c1) >> 10, (1167 * c1) >> 10};
}

void writePixel(unsigned char luma, Chroma const& chroma, unsigned char* pixel)
{
    pixel[0] = static_cast<unsigned char>(rk_clamp(luma + chroma.blue, 0, 255));
    pixel[1] = static_cast<unsigned char>(rk_clamp(luma - chroma.green, 0, 255));
    pixel[2] = static_cast<unsigned char>(rk_clamp(luma + chroma.red, 0, 255));
    pixel[3] = luma;
}

bool isImageSize(int32_t width, int32_t height)
{
    return width > 0 && height > 0 && int64_t(width) * height <= INT32_MAX / 4;
}

} // namespace

bool convertYUV420_NV21toARGB8888(unsigned char const* source, rk_image& target)
{
    uint32_t const width = target.width;
    uint32_t const height = target.height;
    unsigned char const* pair = source + size_t(width) * height;
    for (uint32_t row = 0; row < height; row += 2)
        for (uint32_t column = 0; column < width; column += 2, pair += 2) {
            Chroma const chroma = chromaOf(pair);
            // The blocks of the last column and row are cut where the size is odd.
            for (uint32_t y = row; y < std::min(row + 2, height); ++y)
                for (uint32_t x = column; x < std::min(column + 2, width); ++x)
                    writePixel(source[size_t(width) * y + x], chroma, target.data + rk_image_index(&target, x, y));
        }
    return true;
}

bool CameraFrame::wrap(unsigned char const* bytes, int32_t width, int32_t height, bool isDay, ProcessFrame& frame)
{
    bool const colour = width <= colourWidthMax && isDay;
    if (!bytes || !isImageSize(width, height))
        return colour;
    auto const w = static_cast<uint32_t>(width);
    auto const h = static_cast<uint32_t>(height);
    if (!colour) {
        rk_image const luma = {const_cast<unsigned char*>(bytes), w, h, 1, w * h}; // a view
        setNativeImage(luma, frame);
    } else if (rk_ensure_image(&mColour, w, h, 4)) {
        convertYUV420_NV21toARGB8888(bytes, mColour);
        setNativeImage(mColour, frame);
    }
    return colour;
}

void CameraFrame::setNativeImage(rk_image const& image, ProcessFrame& frame)
{
    rkvl::Resolution const resolution(static_cast<int32_t>(image.width), static_cast<int32_t>(image.height));
    frame.setResolution(resolution);
    frame.setAttribute("native-resolution", rktl::String::fromFormat("%ux%u", image.width, image.height));
    if (image.channels == 1)
        frame.setImage("Native Image", image, 2);
    else
        frame.setBGRY("Native Image", image);
}

void CameraFrame::stamp(ProcessFrame& frame, uint32_t streamStart)
{
    uint32_t const position = rk_tickcount() - streamStart; // also across the wrap of the ticks
    frame.setTimePosition(rktl::TimeStamp::systemTime(), rktl::ElapsedTime(position));
}
