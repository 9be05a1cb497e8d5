#include "math/rk_geometry.h"

#include <math.h>

// Distances along an axis are exact: they take no root.
static float hypotenuse(float dx, float dy)
{
    if (dx == 0.0f)
        return dy;
    if (dy == 0.0f)
        return dx;
    return sqrtf(rk_fsquare(dx) + rk_fsquare(dy));
}

// In 32 bits; a difference beyond them wraps around.
static int32_t difference(int32_t a, int32_t b)
{
    return (int32_t)((uint32_t)a - (uint32_t)b);
}

static int32_t to_pixel(double value)
{
    double const rounded = value + 0.5;
    if (rounded >= 2147483647.0)
        return INT32_MAX;
    if (rounded <= -2147483648.0)
        return INT32_MIN;
    return (int32_t)rounded;
}

void rk_set_segment(rk_segment* segment, int32_t x1, int32_t y1, int32_t x2, int32_t y2)
{
    if (!segment)
        return;
    segment->x1 = x1;
    segment->y1 = y1;
    segment->x2 = x2;
    segment->y2 = y2;
}

int rk_get_intersection(rk_segment const* a, rk_segment const* b, rk_point* point)
{
    if (!a || !b || !point)
        return 0;
    double const d1x = difference(a->x1, a->x2), d1y = difference(a->y1, a->y2);
    double const d2x = difference(b->x1, b->x2), d2y = difference(b->y1, b->y2);
    double const denominator = rk_determinate(d1x, d1y, d2x, d2y);
    if (denominator == 0.0)
        return 0;
    double const c1 = rk_determinate(a->x1, a->y1, a->x2, a->y2);
    double const c2 = rk_determinate(b->x1, b->y1, b->x2, b->y2);
    point->x = to_pixel((d2x * c1 - d1x * c2) / denominator);
    point->y = to_pixel((d2y * c1 - d1y * c2) / denominator);
    return 1;
}

int rk_intersects(rk_segment const* a, rk_segment const* b)
{
    rk_point crossing;
    return rk_get_intersection(a, b, &crossing) && rk_colinear_contains(a, &crossing) && rk_colinear_contains(b, &crossing);
}

int rk_colinear_contains(rk_segment const* segment, rk_point const* point)
{
    if (!segment || !point)
        return 0;
    return point->x >= rk_min(segment->x1, segment->x2) && point->x <= rk_max(segment->x1, segment->x2) &&
        point->y >= rk_min(segment->y1, segment->y2) && point->y <= rk_max(segment->y1, segment->y2);
}

float rk_distance_to(rk_fpoint const* point, float x, float y)
{
    return point ? hypotenuse(fabsf(point->x - x), fabsf(point->y - y)) : 0.0f;
}

float rk_distance_to_point(rk_point const* a, rk_point const* b)
{
    return a && b ? hypotenuse(fabsf((float)a->x - (float)b->x), fabsf((float)a->y - (float)b->y)) : 0.0f;
}

float rk_angle_to_point(rk_point const* a, rk_point const* b)
{
    return a && b ? (float)atan2((double)b->y - (double)a->y, (double)b->x - (double)a->x) : 0.0f;
}

void rk_init_ellipse(rk_ellipse* ellipse, rk_fpoint const* center, float width, float height)
{
    if (!ellipse || !center)
        return;
    bool const wide = width >= height;
    ellipse->center_x = center->x;
    ellipse->center_y = center->y;
    ellipse->major = wide ? width : height;
    ellipse->minor = wide ? height : width;
    float const focus = sqrtf(rk_fsquare(ellipse->major / 2.0f) - rk_fsquare(ellipse->minor / 2.0f));
    float const along_x = wide ? focus : 0.0f;
    float const along_y = wide ? 0.0f : focus;
    ellipse->focus1_x = center->x - along_x;
    ellipse->focus1_y = center->y - along_y;
    ellipse->focus2_x = center->x + along_x;
    ellipse->focus2_y = center->y + along_y;
}

int rk_ellipse_contains(rk_ellipse const* ellipse, float x, float y)
{
    if (!ellipse)
        return 0;
    rk_fpoint const focus1 = {ellipse->focus1_x, ellipse->focus1_y};
    rk_fpoint const focus2 = {ellipse->focus2_x, ellipse->focus2_y};
    return rk_distance_to(&focus1, x, y) + rk_distance_to(&focus2, x, y) <= ellipse->major;
}
