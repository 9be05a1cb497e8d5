#include "detection/rk_background.h"

#include "detection/rk_background_edges.h"
#include "detection/rk_background_mirror.h"
#include "detection/rk_distribution.h"
#include "image/rk_image.h"
#include "math/rk_bbox.h"
#include "math/rk_running_avg.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <sys/mman.h>

uint16_t g_AvgTable[766];

namespace {

constexpr float default_weight = 0.1f;
constexpr uint32_t min_stdev = 15;
constexpr uint32_t min_stdev_chroma = 5; // a and b of Lab spread over a narrower range than the other channels

/// Zeroed, and released with free; null without memory.
template <class Element> Element* allocate(size_t count)
{
    return (Element*)std::calloc(count ? count : 1, sizeof(Element));
}

/// The same in pages as large as the system has them, since an update walks through all of it: looking up the addresses of small
/// pages takes a quarter of its time. Where there are none, the requests fail and nothing is lost.
rk_distribution* allocate_channel(size_t pixels)
{
    constexpr uintptr_t page = 2 << 20;
    rk_distribution* const channel = allocate<rk_distribution>(pixels);
    uintptr_t const first = ((uintptr_t)channel + page - 1) / page * page;
    uintptr_t const last = (uintptr_t)(channel + pixels) / page * page;
    if (channel && first < last && madvise((void*)first, last - first, MADV_HUGEPAGE) == 0)
        madvise((void*)first, last - first, MADV_DONTNEED); // small pages of an earlier owner; what comes instead is zeroed too
    return channel;
}

bool allocate_arrays(rk_background* background, size_t pixels)
{
    bool const colour = background->mode > 0;
    size_t const mirror = pixels * rk_background_mirror_channels(background);
    background->channel0 = allocate_channel(pixels);
    background->channel1 = colour ? allocate_channel(pixels) : nullptr;
    background->channel2 = colour ? allocate_channel(pixels) : nullptr;
    background->edge_model = allocate<rk_running_avg>(pixels);
    background->edge_time = allocate<uint32_t>(pixels);
    background->mirror_mean = allocate<uint8_t>(mirror);
    background->mirror_inverse = allocate<uint8_t>(mirror);
    background->mirror_misfit = 0;
    background->edge_weight = -1.0f;
    return background->channel0 && (!colour || (background->channel1 && background->channel2)) && background->edge_model &&
        background->edge_time && background->mirror_mean && background->mirror_inverse;
}

template <class Element> void release(Element*& array)
{
    std::free(array);
    array = nullptr;
}

void set_channel_weight(rk_distribution* channel, size_t pixels, float weight, uint32_t stdev)
{
    for (size_t i = 0; i < pixels; ++i) {
        rk_distribution_set_weight(&channel[i], weight);
        rk_distribution_set_min_stdev(&channel[i], stdev);
    }
}

} // namespace

int rk_background_init(rk_background* background, uint32_t width, uint32_t height, int32_t mode)
{
    if (!background)
        return 0;
    if (background->allocated)
        rk_background_deinit(background);

    rk_distribution_init();
    for (uint32_t i = 0; i < 766; ++i)
        g_AvgTable[i] = (uint16_t)(i / 3);

    *background = rk_background();
    background->weight = default_weight;
    background->mode = mode;
    return rk_background_resize(background, width, height);
}

int rk_background_deinit(rk_background* background)
{
    if (!background)
        return 0;
    background->width = 0;
    background->height = 0;
    if (!background->allocated)
        return 1;
    release(background->edge_model);
    release(background->edge_time);
    release(background->channel0);
    release(background->channel1);
    release(background->channel2);
    release(background->mirror_mean);
    release(background->mirror_inverse);
    release(background->gradients);
    background->allocated = 0;
    return 1;
}

int rk_background_resize(rk_background* background, uint32_t width, uint32_t height)
{
    if (!background)
        return 0;
    if (background->allocated)
        rk_background_deinit(background);

    uint64_t const pixels = (uint64_t)width * height;
    background->width = width;
    background->height = height;
    background->allocated = 1;
    if (pixels > SIZE_MAX / sizeof(rk_distribution) || !allocate_arrays(background, (size_t)pixels)) {
        rk_background_deinit(background);
        return 0;
    }

    for (rk_distribution* channel : {background->channel0, background->channel1, background->channel2})
        for (size_t i = 0; channel && i < pixels; ++i)
            rk_distribution_reset(&channel[i]);
    return rk_background_set_weight(background, background->weight);
}

int rk_background_set_weight(rk_background* background, float weight)
{
    if (!background)
        return 0;
    if (background->allocated) {
        size_t const pixels = (size_t)background->width * background->height;
        if (weight >= 0.0f && weight <= 1.0f)
            background->edge_weight = weight;
        if (background->track_edges)
            rk_background_apply_edge_weight(background);
        set_channel_weight(background->channel0, pixels, weight, min_stdev);
        if (background->mode > 0) {
            uint32_t const stdev = background->mode == 2 ? min_stdev_chroma : min_stdev;
            set_channel_weight(background->channel1, pixels, weight, stdev);
            set_channel_weight(background->channel2, pixels, weight, stdev);
        }
    }
    background->weight = weight;
    return 1;
}

int rk_background_reset_region(rk_background* background, rk_bbox const* region)
{
    if (!rk_background_valid_region(background, region))
        return 0;
    for (uint32_t y = region->y; y < region->y + region->height; ++y) {
        size_t const row = (size_t)y * background->width;
        for (rk_distribution* channel : {background->channel0, background->channel1, background->channel2})
            for (size_t i = row + region->x; channel && i < row + region->x + region->width; ++i)
                channel[i].unset = 255;
    }
    return rk_background_refresh_mirror(background, region);
}

int rk_background_refresh_mirror(rk_background* background, rk_bbox const* region)
{
    if (!rk_background_valid_region(background, region))
        return 0;
    size_t const channels = rk_background_mirror_channels(background);
    rk_distribution const* const models[] = {background->channel0, background->channel1, background->channel2};
    for (uint32_t y = region->y; y < region->y + region->height; ++y) {
        size_t const first = (size_t)y * background->width + region->x;
        for (size_t i = first; i < first + region->width; ++i)
            for (size_t channel = 0; channel < 3 && models[channel]; ++channel) {
                size_t const byte = channels * i + channel;
                background->mirror_misfit |=
                    rk_background_mirror(models[channel][i], &background->mirror_mean[byte], &background->mirror_inverse[byte]);
            }
    }
    return 1;
}

int rk_background_get_mean(rk_background const* background, rk_image* image)
{
    size_t const channels = rk_background_mirror_channels(background);
    if (!rk_image_valid(image) || image->width != background->width || image->height != background->height ||
        image->channels != channels)
        return 0;
    memcpy(image->data, background->mirror_mean, image->size);
    rk_distribution const* const models[] = {background->channel0, background->channel1, background->channel2};
    for (size_t channel = 0; background->mirror_misfit && channel < 3 && models[channel]; ++channel)
        for (size_t i = 0; i < image->size / channels; ++i)
            image->data[channels * i + channel] = (uint8_t)std::clamp(models[channel][i].mean, 0, 255);
    for (size_t i = 3; channels == 4 && i < image->size; i += 4)
        image->data[i] = 255;
    return 1;
}
