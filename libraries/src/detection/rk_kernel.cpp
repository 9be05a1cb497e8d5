#include "detection/rk_kernel.h"

#include "math/rk_geometry.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr uint32_t sizeMax = 32767;

void cutEllipse(rk_kernel& kernel)
{
    // In single precision: an odd shape is centred on the middle of a cell.
    rk_fpoint const center = {kernel.width * 0.5f, kernel.height * 0.5f};
    rk_ellipse ellipse;
    rk_init_ellipse(&ellipse, &center, static_cast<float>(kernel.width), static_cast<float>(kernel.height));
    uint16_t* cell = kernel.mask;
    for (uint32_t y = 0; y < kernel.height; ++y)
        for (uint32_t x = 0; x < kernel.width; ++x)
            *cell++ = rk_ellipse_contains(&ellipse, x + 0.5f, y + 0.5f) ? rk_kernel_inside : rk_kernel_outside;
}

} // namespace

int rk_init_kernel(rk_kernel* kernel, uint32_t width, uint32_t height, uint32_t type)
{
    if (!kernel || width == 0 || height == 0 || width > sizeMax || height > sizeMax)
        return 0;
    width |= 1;
    height |= 1;
    uint16_t* const mask = static_cast<uint16_t*>(calloc(size_t(width) * height, sizeof(uint16_t)));
    if (!mask) {
        printf("rk_init_kernel(...) - Unable to allocate memory for pKernelBuf.\n");
        return 0;
    }
    *kernel = {type, width, height, width >> 1, height >> 1, mask};
    if (type == rk_kernel_ellipse)
        cutEllipse(*kernel);
    return 1;
}

void rk_free_kernel(rk_kernel* kernel)
{
    if (!kernel)
        return;
    free(kernel->mask);
    *kernel = {};
}
