#include "detection/rk_background.h"

#include "detection/rk_distribution.h"
#include "image/rk_image.h"

#include <cmath>
#include <cstring>

namespace {

/// A channel counts as darkened when it is below its mean and bright enough for a ratio to mean something.
bool is_darkened(int32_t value, int32_t mean)
{
    return value > 16 && value < mean;
}

/// How evenly a pixel was darkened, from its ratios to the model in red, green and blue.
uint8_t grade(float red, float green, float blue)
{
    float const tolerance = (green + blue + red) / 3.0f * 0.1f;
    float const red_green = std::fabs(red - green);
    float const green_blue = std::fabs(green - blue);
    if (red_green >= green_blue && red_green < tolerance)
        return (uint8_t)((1.0f - red_green / tolerance) * 255.0f);
    if (green_blue < tolerance)
        return (uint8_t)((1.0f - green_blue / tolerance) * 255.0f);
    return 255;
}

} // namespace

int rk_background_compare_shadows(rk_background const* background, rk_image const* image, rk_image const* mask, rk_image* shadows)
{
    if (!background || background->mode != 1 || !rk_image_valid(image) || image->channels != 4 ||
        image->width != background->width || image->height != background->height || !rk_image_valid(shadows) ||
        shadows->channels != 1 || shadows->width != image->width || shadows->height != image->height)
        return 0;
    size_t const pixels = shadows->size;
    if (mask && (!mask->data || mask->size != pixels))
        return 0;

    std::memset(shadows->data, 255, pixels);
    for (size_t i = 0; i < pixels; ++i) {
        if (mask && !mask->data[i])
            continue;
        uint8_t const* const bgr = image->data + 4 * i;
        int32_t const blue = background->channel0[i].mean;
        int32_t const green = background->channel1[i].mean;
        int32_t const red = background->channel2[i].mean;
        if (is_darkened(bgr[2], red) && is_darkened(bgr[1], green) && is_darkened(bgr[0], blue))
            shadows->data[i] = grade((float)bgr[2] / (float)red, (float)bgr[1] / (float)green, (float)bgr[0] / (float)blue);
    }
    return 1;
}
