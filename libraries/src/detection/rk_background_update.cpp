#include "detection/rk_background.h"

#include "detection/rk_background_band.h"
#include "detection/rk_distribution.h"
#include "image/rk_image.h"

namespace {

bool has_pixels(rk_image const* image, uint32_t channels)
{
    return image && image->data && image->channels == channels;
}

void learn(rk_background* background, rk_distribution* channel, size_t pixel, uint8_t value, size_t offset)
{
    rk_distribution_update(&channel[pixel], value);
    rk_background_set_band(background, offset, channel[pixel]);
}

void learn_gray(rk_background* background, uint8_t const* gray, uint8_t const* mask)
{
    size_t const pixels = (size_t)background->width * background->height;
    for (size_t i = 0; i < pixels; ++i)
        if (mask[i])
            learn(background, background->channel0, i, gray[i], i);
}

void learn_colour(rk_background* background, uint8_t const* colour, uint8_t const* mask)
{
    size_t const pixels = (size_t)background->width * background->height;
    for (size_t i = 0; i < pixels; ++i) {
        if (!mask[i])
            continue;
        learn(background, background->channel2, i, colour[4 * i + 2], 4 * i + 2);
        learn(background, background->channel1, i, colour[4 * i + 1], 4 * i + 1);
        learn(background, background->channel0, i, colour[4 * i], 4 * i);
    }
}

/// The image that gives the frame its size; null when the images do not suit the model.
rk_image const* frame_for(rk_background const* background, rk_image const* gray, rk_image const* colour)
{
    bool const has_gray = has_pixels(gray, 1);
    bool const has_colour = has_pixels(colour, 4);
    bool const needs_gray = background->track_edges || background->mode == 0;
    bool const needs_colour = background->mode > 0;
    if (background->mode < 0 || (needs_gray && !has_gray) || (needs_colour && !has_colour))
        return nullptr;
    if (needs_colour && has_gray && (gray->width != colour->width || gray->height != colour->height))
        return nullptr;
    return has_gray ? gray : colour;
}

} // namespace

int rk_background_update(rk_background* background, rk_image const* gray, rk_image const* colour, uint8_t const* mask)
{
    if (!mask || !background)
        return 0;
    rk_image const* frame = frame_for(background, gray, colour);
    if (!frame || frame->width <= 3 || frame->height <= 3)
        return 0;
    if (frame->width != background->width || frame->height != background->height)
        if (!rk_background_resize(background, frame->width, frame->height))
            return 0;
    if (background->track_edges && !rk_background_update_edges(background, gray, mask))
        return 0;
    if (background->mode == 0)
        learn_gray(background, gray->data, mask);
    else
        learn_colour(background, colour->data, mask);
    return 1;
}
