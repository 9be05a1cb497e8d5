#include "support/RgbImage.h"
#include "image/rk_image.h"

#include <png.h>

#include <fstream>
#include <stdexcept>

namespace tools {

namespace {

bool writePng(std::filesystem::path const& path, RgbImage const& image)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = image.width;
    header.height = image.height;
    header.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&header, path.c_str(), 0, image.bytes.data(), 0, nullptr) != 0;
}

bool writePpm(std::filesystem::path const& path, RgbImage const& image)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << image.width << " " << image.height << "\n255\n";
    file.write(reinterpret_cast<char const*>(image.bytes.data()), std::streamsize(image.bytes.size()));
    return bool(file.flush());
}

} // namespace

RgbImage::RgbImage(uint32_t columns, uint32_t rows, Rgb colour)
    : width(columns)
    , height(rows)
    , bytes(size_t(3) * columns * rows)
{
    for (size_t i = 0; i < bytes.size(); i += 3) {
        bytes[i] = colour.red;
        bytes[i + 1] = colour.green;
        bytes[i + 2] = colour.blue;
    }
}

RgbImage toRgb(rk_image const& image, uint32_t scale)
{
    RgbImage result(image.width * scale, image.height * scale);
    uint32_t const red = image.channels == 1 ? 0 : 2, green = image.channels == 1 ? 0 : 1;
    for (uint32_t y = 0; y < result.height; ++y)
        for (uint32_t x = 0; x < result.width; ++x) {
            unsigned char const* const source = image.data + rk_image_index(&image, x / scale, y / scale);
            uint8_t* const target = result.pixel(x, y);
            target[0] = source[red];
            target[1] = source[green];
            target[2] = source[0];
        }
    return result;
}

void writeImage(std::filesystem::path const& path, RgbImage const& image)
{
    if (!(path.extension() == ".ppm" ? writePpm(path, image) : writePng(path, image)))
        throw std::runtime_error(path.string() + ": cannot be written");
}

} // namespace tools
