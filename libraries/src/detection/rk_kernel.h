#pragma once

#include <cstdint>

/// The structuring element of connected components: which neighbours of a pixel count as near.
struct rk_kernel {
    uint32_t type;        ///< rk_kernel_square or rk_kernel_ellipse
    uint32_t width;       ///< always odd
    uint32_t height;      ///< always odd
    uint32_t half_width;  ///< width >> 1
    uint32_t half_height; ///< height >> 1
    uint16_t* mask;       ///< width x height cells, row by row: rk_kernel_inside or rk_kernel_outside. Owned.
};

enum : uint32_t { rk_kernel_square = 0, rk_kernel_ellipse = 1 };
enum : uint16_t { rk_kernel_inside = 0, rk_kernel_outside = 65535 };

/// Builds the shape; an even width or height grows by one. Type 1 is the ellipse with the axes width and height, any other
/// type fills the whole rectangle. Does not look at what the record held.
/// 0 for a missing record, a size of 0 or above 32767, or a failed allocation.
int rk_init_kernel(rk_kernel* kernel, uint32_t width, uint32_t height, uint32_t type);

/// Frees the mask and clears the record. Does nothing for a missing record.
void rk_free_kernel(rk_kernel* kernel);
