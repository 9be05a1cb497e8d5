#pragma once

#include <stdint.h>

/// Plane geometry of the vision core, in whole pixels. Nothing is allocated; a missing argument gives 0.

struct rk_point {
    int32_t x;
    int32_t y;
};

struct rk_fpoint {
    float x;
    float y;
};

struct rk_segment {
    int32_t x1;
    int32_t y1;
    int32_t x2;
    int32_t y2;
};

/// Upright: one axis along x, the other along y.
struct rk_ellipse {
    float focus1_x;
    float focus1_y;
    float focus2_x;
    float focus2_y;
    float center_x;
    float center_y;
    float major; // whole length of the longer axis
    float minor; // whole length of the shorter axis
};

inline int32_t rk_max(int32_t a, int32_t b)
{
    return a > b ? a : b;
}

inline int32_t rk_min(int32_t a, int32_t b)
{
    return a < b ? a : b;
}

inline float rk_fmin(float a, float b)
{
    return a < b ? a : b;
}

inline float rk_fsquare(float a)
{
    return a * a;
}

/// Of the matrix with the rows (a, b) and (c, d).
inline double rk_determinate(double a, double b, double c, double d)
{
    return a * d - b * c;
}

void rk_set_segment(rk_segment* segment, int32_t x1, int32_t y1, int32_t x2, int32_t y2);

/// Where the lines through the two segments cross, to whole pixels: plus 0.5, cut towards 0, held to the range.
/// 0, point left alone, for parallel lines.
int rk_get_intersection(rk_segment const* a, rk_segment const* b, rk_point* point);

/// 1 if that pixel lies in both segments' ranges of x and of y, ends included; 0 for parallel segments, even such that overlap.
int rk_intersects(rk_segment const* a, rk_segment const* b);

/// 1 if point lies in the segment's ranges of x and of y, ends included. Whether it lies on the line is not looked at.
int rk_colinear_contains(rk_segment const* segment, rk_point const* point);

/// Pixels, in single precision.
float rk_distance_to(rk_fpoint const* point, float x, float y);
float rk_distance_to_point(rk_point const* a, rk_point const* b);

/// Heading from a to b, -pi to pi, with y downwards.
float rk_angle_to_point(rk_point const* a, rk_point const* b);

/// width, height: lengths of the axes.
void rk_init_ellipse(rk_ellipse* ellipse, rk_fpoint const* center, float width, float height);

/// 1 if the point lies inside or on the border: its distances from the foci add up to the longer axis at most.
int rk_ellipse_contains(rk_ellipse const* ellipse, float x, float y);
