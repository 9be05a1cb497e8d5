#include "detection/rk_detection.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr uint32_t skipQueueLength = 1;
constexpr uint32_t graphCapacity = 64;

void replaceQueue(rk_queue& queue, uint32_t length)
{
    rk_deinit_queue(&queue);
    rk_init_queue(&queue, length);
}

} // namespace

int rk_detection_init(float sensitivity, uint32_t kernel_width, uint32_t kernel_height, uint32_t kernel_type,
    uint32_t image_queue_length, rk_detection* detection)
{
    if (!detection)
        return 0;
    *detection = {};
    detection->sensitivity = sensitivity;
    detection->initialized = 1;
    if (!rk_conncomp_init(graphCapacity, &detection->conncomp)) {
        printf("rk_detection_init(...) - Unable to initialize connected components.\n");
        rk_detection_deinit(detection);
        return 0;
    }
    if (!rk_init_kernel(&detection->kernel, kernel_width, kernel_height, kernel_type)) {
        printf("rk_detection_init(...) - Unable to initialize kernel.\n");
        rk_detection_deinit(detection);
        return 0;
    }
    if (!rk_init_queue(&detection->skip_queue, skipQueueLength) || !rk_init_queue(&detection->image_queue, image_queue_length)) {
        rk_detection_deinit(detection);
        return 0;
    }
    return 1;
}

void rk_detection_deinit(rk_detection* detection)
{
    if (!detection || !detection->initialized)
        return;
    rk_deinit_queue(&detection->skip_queue);
    rk_deinit_queue(&detection->image_queue);
    rk_free_image(&detection->motion);
    rk_free_image(&detection->accumulator);
    free(detection->still);
    rk_free_kernel(&detection->kernel);
    rk_conncomp_deinit(&detection->conncomp);
    *detection = {};
}

int rk_detection_reset(rk_detection* detection)
{
    if (!detection || !detection->initialized)
        return 0;
    float const sensitivity = detection->sensitivity;
    rk_kernel const kernel = detection->kernel;
    uint32_t const imageQueueLength = detection->image_queue.length;
    uint32_t const skipLength = detection->skip_queue.length;
    rk_detection_deinit(detection);
    if (!rk_detection_init(sensitivity, kernel.width, kernel.height, kernel.type, imageQueueLength, detection))
        return 0;
    if (skipLength != skipQueueLength)
        rk_set_skip_imageq_len(skipLength, detection);
    return 1;
}

void rk_set_imageq_len(uint32_t length, rk_detection* detection)
{
    if (!detection || !detection->initialized)
        return;
    replaceQueue(detection->image_queue, length);
    detection->spare_difference = nullptr;
    detection->sum_is_whole = 0;
}

void rk_set_skip_imageq_len(uint32_t length, rk_detection* detection)
{
    if (!detection || !detection->initialized)
        return;
    replaceQueue(detection->skip_queue, length);
    detection->previous = nullptr;
}

uint32_t rk_get_imageq_len(rk_detection const* detection)
{
    return detection ? detection->image_queue.length : UINT32_MAX;
}

uint32_t rk_get_skip_imageq_len(rk_detection const* detection)
{
    return detection ? detection->skip_queue.length : UINT32_MAX;
}

void rk_set_kernel(uint32_t width, uint32_t height, uint32_t type, rk_detection* detection)
{
    if (!detection || !detection->initialized)
        return;
    rk_free_kernel(&detection->kernel);
    rk_init_kernel(&detection->kernel, width, height, type);
}

int rk_resize_images(uint32_t width, uint32_t height, rk_detection* detection)
{
    if (!detection || !rk_resize_image(&detection->accumulator, width, height, 1, 0) ||
        !rk_resize_image(&detection->motion, width, height, 1, 0))
        return 0;
    detection->sum_is_whole = rk_size_queue(&detection->image_queue) == 0;
    return 1;
}
