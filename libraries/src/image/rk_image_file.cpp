#include "image/rk_image_file.h"

#include "image/rk_image.h"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <string>

namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

void writePixels(std::FILE* file, rk_image const& image)
{
    unsigned char const* const end = image.data + image.size;
    for (unsigned char const* pixel = image.data; pixel != end; pixel += image.channels) {
        if (image.channels == 1)
            std::fprintf(file, "%d\n", pixel[0]);
        else if (image.channels == 3)
            std::fprintf(file, "%d %d %d\n", pixel[0], pixel[1], pixel[2]);
        else
            std::fprintf(file, "%d %d %d\n", pixel[2], pixel[1], pixel[0]);
    }
}

/// One decimal number from 0 to limit, white space in front of it skipped; the character behind it stays. -1 for anything else.
int64_t readNumber(std::FILE* file, int64_t limit)
{
    int c;
    do
        c = std::getc(file);
    while (c == ' ' || (c >= '\t' && c <= '\r'));
    int64_t value = -1;
    for (; c >= '0' && c <= '9'; c = std::getc(file)) {
        value = (value < 0 ? 0 : value) * 10 + (c - '0');
        if (value > limit)
            return -1;
    }
    std::ungetc(c, file);
    return value;
}

/// Bytes between the present position and the end; -1 for what is no file with an end.
int64_t bytesLeft(std::FILE* file)
{
    long const here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    long const end = std::ftell(file);
    return std::fseek(file, here, SEEK_SET) == 0 ? int64_t(end) - here : -1;
}

int readPixels(std::FILE* file, rk_image& image)
{
    unsigned char* const end = image.data + image.size;
    for (unsigned char* pixel = image.data; pixel != end; pixel += image.channels) {
        // Red stands first in the file and third in memory; the fourth byte stays 0.
        for (int c = image.channels == 1 ? 0 : 2; c >= 0; --c) {
            int64_t const value = readNumber(file, 255);
            if (value < 0)
                return 0;
            pixel[c] = static_cast<unsigned char>(value);
        }
    }
    return 1;
}

/// image: becomes an image of the file's size and is left to the caller to free.
int readFile(std::FILE* file, rk_image& image)
{
    if (std::getc(file) != 'P')
        return 0;
    int64_t const type = readNumber(file, 3);
    int64_t const width = readNumber(file, UINT32_MAX);
    int64_t const height = readNumber(file, UINT32_MAX);
    if ((type != 2 && type != 3) || width < 0 || height < 0 || readNumber(file, 255) != 255)
        return 0;
    // Each number takes a digit and the blank in front of it. Memory is asked for only when they can all be there.
    int64_t const numbersLeft = bytesLeft(file) / 2;
    int64_t const numbersPerPixel = type == 2 ? 1 : 3;
    if (width && height > numbersLeft / numbersPerPixel / width)
        return 0;
    return rk_init_image(&image, static_cast<uint32_t>(width), static_cast<uint32_t>(height), type == 2 ? 1 : 4) &&
        readPixels(file, image);
}

} // namespace

int rk_write_image(rk_image const* image, char const* path)
{
    if (!rk_image_valid(image) || !path || (image->channels != 1 && image->channels != 3 && image->channels != 4))
        return 0;
    std::string const name = std::string(path) + (image->channels == 1 ? ".pgm" : ".ppm");
    std::FILE* const file = std::fopen(name.c_str(), "w");
    if (!file)
        return 0;
    std::fprintf(file, "%s\n%" PRIu32 " %" PRIu32 "\n255\n", image->channels == 1 ? "P2" : "P3", image->width, image->height);
    writePixels(file, *image);
    bool const written = !std::ferror(file);
    return std::fclose(file) == 0 && written;
}

int rk_read_image(rk_image* image, char const* path)
{
    File const file(image && path ? std::fopen(path, "r") : nullptr);
    rk_image fresh = {};
    if (!file || !readFile(file.get(), fresh)) {
        rk_free_image(&fresh);
        return 0;
    }
    rk_free_image(image);
    *image = fresh;
    return 1;
}
