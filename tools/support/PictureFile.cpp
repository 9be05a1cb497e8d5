#include "support/PictureFile.h"
#include "support/RgbImage.h"

#include <algorithm>

namespace tools {

namespace {

uint8_t clampByte(int value)
{
    return uint8_t(std::clamp(value, 0, 255));
}

RgbImage toRgb(camera::Picture const& picture)
{
    RgbImage image(picture.width, picture.height);
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x) {
            uint8_t const* const pair = picture.chroma() + 2 * (size_t(y / 2) * picture.chromaWidth() + x / 2);
            int const luma = picture.luma()[size_t(y) * picture.width + x], cb = pair[0] - 128, cr = pair[1] - 128;
            uint8_t* const pixel = image.pixel(x, y);
            pixel[0] = clampByte(luma + 1436 * cr / 1024);
            pixel[1] = clampByte(luma - (352 * cb + 731 * cr) / 1024);
            pixel[2] = clampByte(luma + 1815 * cb / 1024);
        }
    return image;
}

} // namespace

void writePicture(std::filesystem::path const& path, camera::Picture const& picture)
{
    writeImage(path, toRgb(picture));
}

} // namespace tools
