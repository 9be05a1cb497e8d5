#include "image/rk_threshold.h"

#include "image/rk_image.h"

#include <cstddef>

int rk_threshold_inittable(unsigned char* table, uint32_t count, uint32_t threshold)
{
    if (!table || count != 256)
        return 0;
    for (uint32_t i = 0; i < count; ++i)
        table[i] = i < threshold ? 0 : 255;
    return 1;
}

int rk_threshold_gray(unsigned char const* table, uint32_t count, rk_image const* source, rk_image* target)
{
    if (!table || count != 256 || !rk_image_valid(source) || !rk_image_valid(target) || source->channels != 1 ||
        source->size != target->size)
        return 0;
    for (size_t i = 0; i < source->size; ++i)
        target->data[i] = table[source->data[i]];
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
