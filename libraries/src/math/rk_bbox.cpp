#include "math/rk_bbox.h"
#include "math/rk_geometry.h"

#include <algorithm>

int rk_bbox_cpy(rk_bbox* destination, rk_bbox const* source)
{
    if (!destination || !source)
        return 0;
    *destination = *source;
    return 1;
}

uint32_t rk_bbox_area(rk_bbox const* box)
{
    return box ? box->width * box->height : 0;
}

int rk_bbox_center(rk_bbox const* box, rk_point* point)
{
    if (!box || !point)
        return 0;
    point->x = static_cast<int32_t>(box->x + (box->width >> 1));
    point->y = static_cast<int32_t>(box->y + (box->height >> 1));
    return 1;
}

int rk_bbox_contains(rk_bbox const* box, rk_point const* point)
{
    if (!box || !point)
        return 0;
    int64_t const left = box->x;
    int64_t const top = box->y;
    return left <= point->x && point->x < left + box->width && top <= point->y && point->y < top + box->height;
}

/// Length of what two stretches of one axis share.
static uint32_t shared_length(uint32_t start1, uint32_t length1, uint32_t start2, uint32_t length2)
{
    uint64_t const start = std::max(start1, start2);
    uint64_t const end = std::min(uint64_t(start1) + length1, uint64_t(start2) + length2);
    return end > start ? static_cast<uint32_t>(end - start) : 0;
}

uint32_t rk_bbox_overlap(rk_bbox const* a, rk_bbox const* b)
{
    if (!a || !b)
        return 0;
    return shared_length(a->x, a->width, b->x, b->width) * shared_length(a->y, a->height, b->y, b->height);
}

/// The length of a stretch that ends at the last of size pixels at most.
static uint32_t restricted(uint32_t start, uint32_t length, uint32_t size)
{
    uint64_t const end = uint64_t(start) + length;
    if (end + 1 <= size)
        return length;
    return size > start ? size - start - 1 : 0;
}

int rk_bbox_restrict(rk_bbox* box, uint32_t width, uint32_t height)
{
    if (!box)
        return 0;
    box->width = restricted(box->x, box->width, width);
    box->height = restricted(box->y, box->height, height);
    return 1;
}

int rk_bbox_inflate(rk_bbox* box, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom)
{
    if (!box)
        return 0;
    uint32_t const moved_left = std::min(left, box->x);
    uint32_t const moved_up = std::min(top, box->y);
    box->x -= moved_left;
    box->y -= moved_up;
    box->width += moved_left + right;
    box->height += moved_up + bottom;
    return 1;
}

int rk_bbox_intersects(rk_bbox const* box, rk_segment const* segment)
{
    if (!box || !segment)
        return 0;
    int32_t const left = static_cast<int32_t>(box->x);
    int32_t const top = static_cast<int32_t>(box->y);
    int32_t const right = static_cast<int32_t>(box->x + box->width);
    int32_t const bottom = static_cast<int32_t>(box->y + box->height);
    rk_segment const sides[] = {
        {left, top, right, top},
        {left, bottom, right, bottom},
        {left, top, left, bottom},
        {right, top, right, bottom},
    };
    for (rk_segment const& side : sides)
        if (rk_intersects(&side, segment))
            return 1;
    return 0;
}
