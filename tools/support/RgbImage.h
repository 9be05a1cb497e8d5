#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

struct rk_image;

namespace tools {

struct Rgb {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;

    bool operator==(Rgb const&) const = default;
};

/// A picture for people: red, green and blue bytes, row after row.
struct RgbImage {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> bytes;

    RgbImage() = default;
    /// All of one colour. width, height: at least 1.
    RgbImage(uint32_t columns, uint32_t rows, Rgb colour = {});

    uint8_t* pixel(uint32_t x, uint32_t y) { return bytes.data() + 3 * (size_t(y) * width + x); }
    uint8_t const* pixel(uint32_t x, uint32_t y) const { return bytes.data() + 3 * (size_t(y) * width + x); }
    Rgb at(uint32_t x, uint32_t y) const { return {pixel(x, y)[0], pixel(x, y)[1], pixel(x, y)[2]}; }
};

/// image: gray (1 channel) or blue, green, red and a fourth byte that is left out (4 channels). Each pixel becomes a square of
/// `scale` by `scale`, at least 1.
RgbImage toRgb(rk_image const& image, uint32_t scale = 1);

/// Writes a PNG or, when the name ends in ".ppm", a binary PPM. Throws std::runtime_error when the file cannot be written.
void writeImage(std::filesystem::path const& path, RgbImage const& image);

} // namespace tools
