#include "image/rk_threshold.h"

#include "image/rk_image.h"
#include "image/rk_row.h"

#include <cstddef>
#include <cstring>

namespace {

/// The threshold of a table such as rk_threshold_inittable fills, 0 to 256; -1 for any other table.
int thresholdOf(unsigned char const* table)
{
    int threshold = 0;
    while (threshold < 256 && table[threshold] == 0)
        ++threshold;
    for (int i = threshold; i < 256; ++i)
        if (table[i] != 255)
            return -1;
    return threshold;
}

} // namespace

int rk_threshold_inittable(unsigned char* table, uint32_t count, uint32_t threshold)
{
    if (!table || count != 256)
        return 0;
    for (uint32_t i = 0; i < count; ++i)
        table[i] = i < threshold ? 0 : 255;
    return 1;
}

int rk_threshold_gray(unsigned char const* table, uint32_t tableSize, rk_image const* source, rk_image* target)
{
    if (!table || tableSize != 256 || !rk_image_valid(source) || !rk_image_valid(target) || source->channels != 1 ||
        source->size != target->size)
        return 0;
    unsigned char const* const in = source->data;
    unsigned char* const out = target->data;
    size_t const count = source->size;
    // Comparing takes a vector of pixels at a time, looking up only one. Some 256 steps here pay for themselves.
    int const threshold = thresholdOf(table);
    if (threshold == 256)
        std::memset(out, 0, count);
    else if (threshold >= 0)
        rk_row().at_least(in, out, count, static_cast<unsigned char>(threshold));
    else
        for (size_t i = 0; i < count; ++i)
            out[i] = table[in[i]];
    return 1;
}

float rk_image_count(rk_bbox const* region, rk_image const* image, unsigned char value, uint32_t* count)
{
    if (!region || !rk_image_valid(image) || !count || image->channels != 1 || region->width == 0 || region->height == 0 ||
        uint64_t(region->x) + region->width > image->width || uint64_t(region->y) + region->height > image->height)
        return -1.0f;
    uint32_t found = 0;
    for (uint32_t y = 0; y < region->height; ++y) {
        unsigned char const* const row = image->data + rk_image_index(image, region->x, region->y + y);
        for (uint32_t x = 0; x < region->width; ++x)
            found += row[x] >= value;
    }
    *count = found;
    return static_cast<float>(found) / static_cast<float>(region->width * region->height);
}
