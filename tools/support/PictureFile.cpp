#include "support/PictureFile.h"

#include <png.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace tools {

namespace {

uint8_t clampByte(int value)
{
    return uint8_t(std::clamp(value, 0, 255));
}

/// Interleaved red, green, blue.
std::vector<uint8_t> toRgb(camera::Picture const& picture)
{
    std::vector<uint8_t> rgb;
    rgb.reserve(picture.lumaSize() * 3);
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x) {
            uint8_t const* const pair = picture.chroma() + 2 * (size_t(y / 2) * picture.chromaWidth() + x / 2);
            int const luma = picture.luma()[size_t(y) * picture.width + x], cb = pair[0] - 128, cr = pair[1] - 128;
            rgb.push_back(clampByte(luma + 1436 * cr / 1024));
            rgb.push_back(clampByte(luma - (352 * cb + 731 * cr) / 1024));
            rgb.push_back(clampByte(luma + 1815 * cb / 1024));
        }
    return rgb;
}

bool writePng(std::filesystem::path const& path, camera::Picture const& picture, std::vector<uint8_t> const& rgb)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

bool writePpm(std::filesystem::path const& path, camera::Picture const& picture, std::vector<uint8_t> const& rgb)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << picture.width << " " << picture.height << "\n255\n";
    file.write(reinterpret_cast<char const*>(rgb.data()), std::streamsize(rgb.size()));
    return bool(file.flush());
}

} // namespace

void writePicture(std::filesystem::path const& path, camera::Picture const& picture)
{
    auto const rgb = toRgb(picture);
    bool const written = path.extension() == ".ppm" ? writePpm(path, picture, rgb) : writePng(path, picture, rgb);
    if (!written)
        throw std::runtime_error(path.string() + ": cannot be written");
}

} // namespace tools
