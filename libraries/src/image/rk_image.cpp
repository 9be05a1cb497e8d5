#include "image/rk_image.h"

#include "math/rk_bbox.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// True when a box of width by height pixels at (x, y) lies inside image.
bool fits(rk_image const& image, uint32_t x, uint32_t y, uint32_t width, uint32_t height)
{
    return width <= image.width && x <= image.width - width && height <= image.height && y <= image.height - height;
}

bool sizeInBytes(uint32_t width, uint32_t height, uint32_t channels, uint32_t& size)
{
    uint64_t const pixels = uint64_t(width) * height;
    if (pixels > UINT32_MAX || (channels && pixels > UINT32_MAX / channels))
        return false;
    size = static_cast<uint32_t>(pixels * channels);
    return true;
}

/// Copies width by height pixels between two places of images with the same channels.
void copyRows(rk_image const& source, uint32_t sourceX, uint32_t sourceY, rk_image& target, uint32_t targetX, uint32_t targetY,
    uint32_t width, uint32_t height)
{
    size_t const bytes = size_t(width) * source.channels;
    for (uint32_t row = 0; row < height; ++row) // memmove: an image may be copied onto itself
        std::memmove(target.data + rk_image_index(&target, targetX, targetY + row),
            source.data + rk_image_index(&source, sourceX, sourceY + row), bytes);
}

/// The channel count is a constant here, so that a pixel is copied by one store or two.
template <uint32_t Channels> void growRows(rk_image const& source, rk_image& target)
{
    size_t const row = size_t(target.width) * Channels;
    unsigned char const* in = source.data;
    unsigned char* out = target.data;
    for (uint32_t y = 0; y < source.height; ++y) {
        for (uint32_t x = 0; x < source.width; ++x, in += Channels) {
            std::memcpy(out + 2 * Channels * size_t(x), in, Channels);
            std::memcpy(out + 2 * Channels * size_t(x) + Channels, in, Channels);
        }
        std::memcpy(out + row, out, row);
        out += 2 * row;
    }
}

} // namespace

int rk_init_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels)
{
    if (!image)
        return 0;
    *image = {};
    uint32_t size = 0;
    bool const fitting = sizeInBytes(width, height, channels, size);
    unsigned char* const data = fitting && size ? static_cast<unsigned char*>(std::calloc(size, 1)) : nullptr;
    if (!fitting || (size && !data)) {
        std::puts("rk_init_image(...) - Unable to allocate memory for new buffer.");
        return 0;
    }
    *image = {data, width, height, channels, size};
    return 1;
}

int rk_ensure_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels)
{
    if (!image)
        return 0;
    if (image->width == width && image->height == height && image->channels == channels)
        return 1;
    rk_free_image(image);
    return rk_init_image(image, width, height, channels);
}

int rk_resize_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels, unsigned char value)
{
    if (!rk_ensure_image(image, width, height, channels))
        return 0;
    if (image->size)
        std::memset(image->data, value, image->size);
    return 1;
}

void rk_free_image(rk_image* image)
{
    if (!image)
        return;
    std::free(image->data);
    *image = {};
}

int rk_image_valid(rk_image const* image)
{
    return image && image->data && image->size;
}

int rk_copy_image(rk_image const* source, rk_image* target)
{
    if (!source || !target)
        return 0;
    if (source == target)
        return 1;
    if (source->size != target->size) {
        rk_free_image(target);
        if (!rk_init_image(target, source->width, source->height, source->channels))
            return 0;
    }
    target->width = source->width;
    target->height = source->height;
    target->channels = source->channels;
    if (source->size)
        std::memmove(target->data, source->data, source->size);
    return 1;
}

int rk_copy_image_roi(rk_image const* source, rk_bbox const* region, rk_image* target)
{
    if (!rk_image_valid(source) || !region || !target || !fits(*source, region->x, region->y, region->width, region->height) ||
        !rk_ensure_image(target, source->width, source->height, source->channels))
        return 0;
    copyRows(*source, region->x, region->y, *target, region->x, region->y, region->width, region->height);
    return 1;
}

int rk_crop_image(rk_image const* source, uint32_t x, uint32_t y, rk_image* target)
{
    if (!rk_image_valid(source) || !rk_image_valid(target) || source->channels != target->channels ||
        !fits(*source, x, y, target->width, target->height))
        return 0;
    copyRows(*source, x, y, *target, 0, 0, target->width, target->height);
    return 1;
}

int rk_paste_image(rk_image const* source, uint32_t x, uint32_t y, rk_image* target)
{
    if (!rk_image_valid(source) || !rk_image_valid(target) || source->channels != target->channels ||
        !fits(*target, x, y, source->width, source->height))
        return 0;
    copyRows(*source, 0, 0, *target, x, y, source->width, source->height);
    return 1;
}

int rk_fill_border(rk_image* image, uint32_t border, unsigned char value)
{
    if (!rk_image_valid(image) || image->channels != 1 || border == 0 || border > image->width / 2 || border > image->height / 2)
        return 0;
    size_t const width = image->width;
    size_t const height = image->height;
    std::memset(image->data, value, border * width);
    std::memset(image->data + (height - border) * width, value, border * width);
    // The right strip of a row and the left strip of the next are neighbours in memory. The outermost of these fills reach
    // into the rows that are filled already.
    for (size_t y = border; y <= height - border; ++y)
        std::memset(image->data + y * width - border, value, 2 * size_t(border));
    return 1;
}

int rk_shrink_image(rk_image const* source, rk_image* target)
{
    if (!rk_image_valid(source) || !target || source == target || source->channels != target->channels ||
        !rk_ensure_image(target, source->width / 2, source->height / 2, source->channels))
        return 0;
    uint32_t const channels = source->channels;
    unsigned char* out = target->data;
    for (uint32_t y = 0; y < target->height; ++y) {
        unsigned char const* in = source->data + rk_image_index(source, 0, 2 * y);
        for (uint32_t x = 0; x < target->width; ++x, in += 2 * channels)
            for (uint32_t c = 0; c < channels; ++c)
                *out++ = in[c];
    }
    return 1;
}

int rk_grow_image(rk_image const* source, rk_image* target)
{
    if (!rk_image_valid(source) || !target || source == target || source->width > UINT32_MAX / 2 ||
        source->height > UINT32_MAX / 2 || !rk_ensure_image(target, 2 * source->width, 2 * source->height, source->channels))
        return 0;
    switch (source->channels) {
    case 1:
        growRows<1>(*source, *target);
        return 1;
    case 3:
        growRows<3>(*source, *target);
        return 1;
    case 4:
        growRows<4>(*source, *target);
        return 1;
    }
    return 0;
}

int rk_scale_image(rk_image const* source, rk_image* target)
{
    if (!rk_image_valid(source) || !rk_image_valid(target) || source == target || source->channels != target->channels)
        return 0;
    float const fx = static_cast<float>(source->width) / static_cast<float>(target->width);
    float const fy = static_cast<float>(source->height) / static_cast<float>(target->height);
    uint32_t const channels = source->channels;
    unsigned char* out = target->data;
    for (uint32_t y = 0; y < target->height; ++y) {
        // The products stay near the source's size: far below 2^64, so the conversion is defined.
        uint64_t const sourceY = static_cast<uint64_t>(static_cast<float>(y) * fy);
        for (uint32_t x = 0; x < target->width; ++x, out += channels) {
            uint64_t const sourceX = static_cast<uint64_t>(static_cast<float>(x) * fx);
            if (sourceX >= source->width || sourceY >= source->height) {
                std::memset(out, 0, channels);
                continue;
            }
            unsigned char const* const in =
                source->data + rk_image_index(source, static_cast<uint32_t>(sourceX), static_cast<uint32_t>(sourceY));
            for (uint32_t c = 0; c < channels; ++c)
                out[c] = in[c];
        }
    }
    return 1;
}

int rk_extract_channel(rk_image const* source, rk_image* target, uint32_t channel, unsigned char threshold)
{
    if (!rk_image_valid(source) || !target || source == target || source->channels != 4 || channel > 3 ||
        !rk_ensure_image(target, source->width, source->height, 1))
        return 0;
    unsigned char const* const in = source->data + channel;
    unsigned char* const out = target->data;
    for (size_t i = 0; i < target->size; ++i)
        out[i] = in[4 * i] > threshold ? in[4 * i] : 0;
    return 1;
}

int rk_add_alpha(rk_image const* gray, rk_image* colour)
{
    if (!rk_image_valid(gray) || !rk_image_valid(colour) || gray->channels != 1 || colour->channels != 4 ||
        gray->width != colour->width || gray->height != colour->height)
        return 0;
    for (size_t i = 0; i < gray->size; ++i)
        colour->data[4 * i + 3] = gray->data[i];
    return 1;
}

int rk_inflate_image(rk_image const* source, rk_image* target)
{
    if (!rk_image_valid(source) || !target || source == target || source->channels != 3 ||
        !rk_ensure_image(target, source->width, source->height, 4))
        return 0;
    unsigned char const* in = source->data;
    unsigned char* const end = target->data + target->size;
    for (unsigned char* out = target->data; out != end; out += 4, in += 3) {
        out[0] = in[2];
        out[1] = in[1];
        out[2] = in[0];
        out[3] = 0;
    }
    return 1;
}
