#pragma once

#include <cstdint>

struct rk_point;
struct rk_segment;

/// A box in whole pixels of an image. Boxes of regions hold extents: largest coordinate minus smallest, so that a single
/// pixel has width and height 0. Right and bottom are always x + width and y + height, worked out without wrapping.
struct rk_bbox {
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
};

/// Functions below give 0, and change nothing, for a null argument.

/// 1 when copied.
int rk_bbox_cpy(rk_bbox* destination, rk_bbox const* source);

/// width * height; a box stays below 2^32 pixels.
uint32_t rk_bbox_area(rk_bbox const* box);

/// point: x + width / 2, y + height / 2, rounded down. Returns 1.
int rk_bbox_center(rk_bbox const* box, rk_point* point);

/// 1 when point lies in the box: left and top side belong to it, right and bottom do not.
int rk_bbox_contains(rk_bbox const* box, rk_point const* point);

/// Area that both boxes cover, in pixels; 0 when they do not overlap.
uint32_t rk_bbox_overlap(rk_bbox const* a, rk_bbox const* b);

/// Cuts the box to an image of width by height pixels: no side goes past the last column or row, so that the box suits as
/// extents. A box that begins beyond the image gets size 0 in that direction; x and y stay. Returns 1.
int rk_bbox_restrict(rk_bbox* box, uint32_t width, uint32_t height);

/// Moves each side out by a number of pixels; left and top side stop at 0. Returns 1.
int rk_bbox_inflate(rk_bbox* box, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom);

/// 1 when segment crosses one of the four sides. A segment that lies wholly inside crosses none.
int rk_bbox_intersects(rk_bbox const* box, rk_segment const* segment);
