#include "detection/rk_background.h"

#include "detection/rk_background_learn.h"
#include "detection/rk_distribution.h"
#include "image/rk_image.h"

#include <initializer_list>

namespace {

bool has_pixels(rk_image const* image, uint32_t channels)
{
    return image && image->data && image->channels == channels;
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

    rk_background_learn_run const learn = rk_background_learn();
    size_t const pixels = (size_t)background->width * background->height;
    if (background->mode == 0) {
        background->mirror_misfit |=
            learn(background->channel0, background->mirror_mean, background->mirror_inverse, gray->data, mask, pixels, 1);
        return 1;
    }
    rk_distribution* const models[] = {background->channel0, background->channel1, background->channel2};
    for (size_t channel : {2, 1, 0})
        background->mirror_misfit |= learn(models[channel], background->mirror_mean + channel,
            background->mirror_inverse + channel, colour->data + channel, mask, pixels, 4);
    return 1;
}
