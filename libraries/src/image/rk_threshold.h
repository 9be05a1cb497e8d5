#pragma once

#include "math/rk_bbox.h"

#include <cstdint>

struct rk_image;

/// count must be 256. Entries below threshold become 0, the others 255.
int rk_threshold_inittable(unsigned char* table, uint32_t count, uint32_t threshold);

/// Each byte of target becomes the table's value for the byte of source. count must be 256, source has one channel, and both
/// have the same size in bytes; they may be one image.
int rk_threshold_gray(unsigned char const* table, uint32_t count, rk_image const* source, rk_image* target);

/// count becomes the number of pixels of region whose byte is at least value; the result is their share of the region, 0.0
/// to 1.0. Here width and height of the region are sizes, not extents. -1.0, with count as it was, when an argument is missing,
/// image has not one channel, or the region is empty or does not lie in the image.
float rk_image_count(rk_bbox const* region, rk_image const* image, unsigned char value, uint32_t* count);

/// The same for any record that has x, y, width and height, such as rk_vertex.
template <class Region> float rk_image_count(Region const* region, rk_image const* image, unsigned char value, uint32_t* count)
{
    if (!region)
        return -1.0f;
    rk_bbox const box = {region->x, region->y, region->width, region->height};
    return rk_image_count(&box, image, value, count);
}
