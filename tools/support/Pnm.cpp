#include "support/Pnm.h"
#include "camera/sources/Picture.h"

#include <fstream>
#include <stdexcept>
#include <vector>

namespace tools {

namespace {

[[noreturn]] void fail(std::filesystem::path const& path, char const* why)
{
    throw std::runtime_error(path.string() + ": " + why);
}

/// A number of the header, behind white space and comments; 0 for anything else, and for what is larger than any size.
uint32_t readNumber(std::istream& file)
{
    while (file >> std::ws && file.peek() == '#')
        for (int c = file.get(); c != '\n' && c != std::istream::traits_type::eof();)
            c = file.get();
    uint32_t number = 0;
    while (file.peek() >= '0' && file.peek() <= '9' && number <= camera::MAX_PIXELS)
        number = number * 10 + uint32_t(file.get() - '0');
    return number <= camera::MAX_PIXELS ? number : 0;
}

} // namespace

void writePnm(std::filesystem::path const& path, rk_image const& image)
{
    if (!rk_image_valid(&image))
        fail(path, "there is no picture to write");
    std::ofstream file(path, std::ios::binary);
    file << (image.channels == 1 ? "P5\n" : "P6\n") << image.width << " " << image.height << "\n255\n";
    if (image.channels == 1) {
        file.write(reinterpret_cast<char const*>(image.data), image.size);
    } else {
        std::vector<char> rgb;
        rgb.reserve(size_t(3) * image.width * image.height);
        for (unsigned char const* pixel = image.data; pixel < image.data + image.size; pixel += 4)
            rgb.insert(rgb.end(), {char(pixel[2]), char(pixel[1]), char(pixel[0])});
        file.write(rgb.data(), std::streamsize(rgb.size()));
    }
    if (!file.flush())
        fail(path, "cannot be written");
}

void readPnm(std::filesystem::path const& path, rk_image& image)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        fail(path, "cannot be read");
    char magic[2] = {};
    file.read(magic, 2);
    if (magic[0] != 'P' || (magic[1] != '5' && magic[1] != '6'))
        fail(path, "is no binary PGM or PPM");
    uint32_t const width = readNumber(file), height = readNumber(file), largest = readNumber(file);
    file.get(); // the one white space before the pixels
    if (width == 0 || height == 0 || uint64_t(width) * height > camera::MAX_PIXELS || largest != 255)
        fail(path, "has a header that does not fit (at least one pixel, at most 2^24, 8 bits a channel)");
    uint32_t const channels = magic[1] == '5' ? 1 : 3;
    std::vector<char> bytes(size_t(channels) * width * height);
    if (!file.read(bytes.data(), std::streamsize(bytes.size())))
        fail(path, "ends before its last pixel");
    if (!rk_ensure_image(&image, width, height, channels == 1 ? 1 : 4))
        fail(path, "does not fit the memory");
    if (channels == 1) {
        std::copy(bytes.begin(), bytes.end(), image.data);
        return;
    }
    unsigned char* pixel = image.data;
    for (size_t i = 0; i < bytes.size(); i += 3, pixel += 4) {
        pixel[0] = static_cast<unsigned char>(bytes[i + 2]);
        pixel[1] = static_cast<unsigned char>(bytes[i + 1]);
        pixel[2] = static_cast<unsigned char>(bytes[i]);
        pixel[3] = 0;
    }
}

} // namespace tools
