#include "detection/rk_background_edges.h"

#include "detection/rk_background.h"
#include "image/rk_image.h"
#include "image/rk_sobel.h"
#include "math/rk_fast.h"
#include "math/rk_running_avg.h"
#include "misc/rk_clock.h"

namespace {

constexpr uint32_t memory_ms = 2000; // an edge without support for longer is forgotten

/// The first orientation after a gap restarts the value, the one after that starts the average.
void learn_orientation(rk_running_avg& edge, float orientation)
{
    if (edge.value == 0.0f)
        edge.value = orientation;
    else
        rk_running_avg_add(&edge, orientation);
}

} // namespace

void rk_background_apply_edge_weight(rk_background* background)
{
    if (background->edge_weight < 0.0f)
        return;
    size_t const pixels = (size_t)background->width * background->height;
    for (size_t i = 0; i < pixels; ++i)
        rk_running_avg_set_weight(&background->edge_model[i], background->edge_weight);
    background->edge_weight = -1.0f;
}

int rk_background_update_edges(rk_background* background, rk_image const* gray, uint8_t const* mask)
{
    if (!background || !background->allocated || !mask || !rk_image_valid(gray) || gray->width != background->width ||
        gray->height != background->height)
        return 0;
    size_t const pixels = (size_t)background->width * background->height;
    if (!background->gradients)
        background->gradients = (rk_magnitude*)std::calloc(pixels, sizeof(rk_magnitude));
    if (!background->gradients || !rk_sobel_image(gray, background->gradients))
        return 0;

    rk_background_apply_edge_weight(background);
    uint32_t const now = rk_tickcount();
    for (size_t i = 0; i < pixels; ++i) {
        if (!mask[i])
            continue;
        rk_magnitude const& gradient = background->gradients[i];
        if (rk_magnitude_is_edge(gradient)) {
            learn_orientation(background->edge_model[i], (float)rk_unwrap(gradient.dx, gradient.dy));
            background->edge_time[i] = now;
        } else if (background->edge_time[i] < now - memory_ms) { // plain unsigned order, also where the clock wraps
            background->edge_model[i].value = 0.0f;
        }
    }
    return 1;
}
