#include "detection/rk_detection.h"

#include "image/rk_morphology.h"
#include "image/rk_threshold.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

unsigned char const g_ThresholdTable[256] = {
#define FULL_8 255, 255, 255, 255, 255, 255, 255, 255
#define FULL_64 FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, FULL_8
    0, 255, 255, 255, 255, 255, 255, 255,                   //
    FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, FULL_8, //
    FULL_64, FULL_64, FULL_64
#undef FULL_64
#undef FULL_8
};

namespace {

// 75 at a sensitivity of 0, 42 at 0.5, 10 at 1; 0 outside that range.
uint32_t pixelThreshold(float sensitivity)
{
    if (!(sensitivity >= 0.0f && sensitivity <= 1.0f))
        return 0;
    return static_cast<uint32_t>((1.0f - sensitivity) * 65.0f) + 10;
}

void differenceGray(unsigned char const* previous, unsigned char const* current, unsigned char* result, size_t pixels,
    int threshold, unsigned char value)
{
    for (size_t i = 0; i < pixels; ++i) {
        int const difference = current[i] - previous[i];
        result[i] = (difference < 0 ? -difference : difference) > threshold ? value : 0;
    }
}

void differenceColour(unsigned char const* previous, unsigned char const* current, unsigned char* result, size_t pixels,
    int squared, unsigned char value)
{
    static_assert(3 * 255 * 255 <= INT32_MAX, "the squared distance of two colours fits an int");
    for (size_t i = 0; i < pixels; ++i) {
        unsigned char const* const a = previous + 4 * i;
        unsigned char const* const b = current + 4 * i;
        int const distance = rk_square(a[0] - b[0]) + rk_square(a[1] - b[1]) + rk_square(a[2] - b[2]);
        result[i] = distance > squared ? value : 0;
    }
}

/// Until the skip queue has filled, frames only go into it.
int prime(rk_image const& image, rk_detection& detection)
{
    rk_image* copy = detection.previous;
    bool const isNew = !copy;
    if (isNew)
        copy = static_cast<rk_image*>(calloc(1, sizeof(rk_image)));
    if (!rk_resize_images(image.width, image.height, &detection) || !copy ||
        !rk_ensure_image(copy, image.width, image.height, image.channels)) {
        if (isNew)
            free(copy);
        return 0;
    }
    memcpy(copy->data, image.data, image.size);
    return rk_push_queue(&detection.skip_queue, copy, &detection.previous);
}

/// The difference of this frame, into a mask that is used again or, until the queue has filled, a new one.
rk_image* takeDifference(rk_image const& image, rk_detection& detection)
{
    rk_image* const difference = rk_get_image(detection.spare_difference, image.width, image.height, 1);
    if (!difference)
        return nullptr;
    unsigned char const value =
        static_cast<unsigned char>(255 / (detection.image_queue.length ? detection.image_queue.length : 1));
    if (!rk_threshold(detection.previous, &image, difference, pixelThreshold(detection.sensitivity), value)) {
        if (difference != detection.spare_difference) {
            rk_free_image(difference);
            free(difference);
        }
        return nullptr;
    }
    return difference;
}

/// One frame once there is one to compare it with.
int compare(rk_image const& image, rk_image* scratch, rk_detection& detection)
{
    if (!rk_get_image(detection.previous, image.width, image.height, image.channels))
        return 0;
    rk_image* const difference = takeDifference(image, detection);
    if (!difference)
        return 0;
    rk_push_queue(&detection.skip_queue, detection.previous, &detection.previous);
    rk_push_queue(&detection.image_queue, difference, &detection.spare_difference);
    if (!rk_combine(difference, detection.spare_difference, &detection.accumulator))
        return 0;
    if (!detection.spare_difference || !detection.previous)
        return 1;
    return rk_threshold_gray(g_ThresholdTable, 256, &detection.accumulator, &detection.motion) &&
        rk_erode_image(&detection.motion, &detection.motion, scratch);
}

} // namespace

int rk_process(rk_image const* image, rk_image* scratch, rk_image* result, rk_detection* detection)
{
    if (!detection || !detection->initialized || !rk_image_valid(image) || (image->channels != 1 && image->channels != 4))
        return 0;
    if (image->width != detection->motion.width || image->height != detection->motion.height)
        if (!rk_detection_reset(detection))
            return 0;
    bool const primed = rk_image_valid(&detection->motion) && detection->previous;
    if (!(primed ? compare(*image, scratch, *detection) : prime(*image, *detection)))
        return 0;
    return result ? rk_copy_image(&detection->motion, result) : 1;
}

rk_image* rk_get_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels)
{
    if (image && image->channels == channels)
        return image;
    rk_image* const record = image ? image : static_cast<rk_image*>(calloc(1, sizeof(rk_image)));
    if (!record) {
        printf("rk_get_diff_image(...) - Unable to allocate memory for pImage.\n");
        return nullptr;
    }
    rk_free_image(record);
    if (!rk_init_image(record, width, height, channels)) {
        printf("rk_get_diff_image(...) - Unable to initialize pImage\n");
        rk_free_image(record);
        if (!image)
            free(record);
        return nullptr;
    }
    return record;
}

int rk_threshold(rk_image* previous, rk_image const* current, rk_image* result, uint32_t threshold, unsigned char value)
{
    if (!rk_image_valid(previous) || !rk_image_valid(current) || !rk_image_valid(result) || result->channels != 1 ||
        previous->channels != current->channels || previous->size != current->size ||
        result->size != current->size / current->channels)
        return 0;
    // No two pixels are further apart than this, and the square still fits.
    int const limit = static_cast<int>(threshold < 1000 ? threshold : 1000);
    if (current->channels == 1)
        differenceGray(previous->data, current->data, result->data, result->size, limit, value);
    else if (current->channels == 4)
        differenceColour(previous->data, current->data, result->data, result->size, rk_square(limit), value);
    else
        return 0;
    memcpy(previous->data, current->data, current->size);
    return 1;
}

int rk_combine(rk_image const* new_image, rk_image const* old_image, rk_image* accumulator)
{
    if (!rk_image_valid(new_image) || !rk_image_valid(accumulator) || new_image->size != accumulator->size)
        return 0;
    unsigned char* const sum = accumulator->data;
    unsigned char const* const fresh = new_image->data;
    size_t const size = accumulator->size;
    if (!old_image) {
        for (size_t i = 0; i < size; ++i)
            sum[i] = static_cast<unsigned char>(sum[i] + fresh[i]);
        return 1;
    }
    if (!rk_image_valid(old_image) || old_image->size != size)
        return 0;
    unsigned char const* const old = old_image->data;
    for (size_t i = 0; i < size; ++i)
        sum[i] = rk_combine_val(sum[i], old[i], fresh[i]);
    return 1;
}
