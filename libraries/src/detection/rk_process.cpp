#include "detection/rk_detection.h"

#include "image/rk_morphology.h"
#include "image/rk_row.h"
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

/// Row-wise difference of two pictures of the same channels, 1 or 4.
void differenceRow(unsigned char const* previous, unsigned char const* current, unsigned char* result, size_t pixels,
    uint32_t channels, uint32_t threshold, unsigned char value)
{
    // No two bytes are further apart than 255, no two pixels further than 442.
    if (channels == 1)
        rk_row().difference(
            previous, current, result, pixels, static_cast<unsigned char>(threshold < 255 ? threshold : 255), value);
    else
        rk_row().difference_colour(
            previous, current, result, pixels, rk_square(static_cast<int>(threshold < 1000 ? threshold : 1000)), value);
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

/// What a mask holds where pixels differ: as many as fit the queue sum up to at most 255.
unsigned char flagValue(rk_detection const& detection)
{
    return static_cast<unsigned char>(255 / (detection.image_queue.length ? detection.image_queue.length : 1));
}

/// The difference of this frame, into a mask that is used again or, until the queue has filled, a new one.
rk_image* takeDifference(rk_image const& image, rk_detection& detection)
{
    rk_image* const difference = rk_get_image(detection.spare_difference, image.width, image.height, 1);
    if (!difference)
        return nullptr;
    if (!rk_threshold(detection.previous, &image, difference, pixelThreshold(detection.sensitivity), flagValue(detection))) {
        if (difference != detection.spare_difference) {
            rk_free_image(difference);
            free(difference);
        }
        return nullptr;
    }
    return difference;
}

/// All steps of a frame in one walk over its rows, so that each byte is fetched once, and masks, sum and motion where nothing
/// moves hardly at all. What it leaves in the masks, in the sum, in scratch and in motion is what the steps leave that are taken
/// one after the other.
class Sweep {
public:
    /// Both queues are full, and every image has the frame's size: then nothing in here can fail.
    static bool suits(rk_image const& image, rk_image const* scratch, rk_detection const& detection)
    {
        size_t const pixels = size_t(image.width) * image.height;
        auto const isPlane = [=](rk_image const* plane) {
            return rk_image_valid(plane) && plane->channels == 1 && plane->size == pixels;
        };
        return !rk_row_is_plain() && image.height >= 3 && image.width >= 3 && detection.previous->channels == image.channels &&
            detection.previous->size == image.size && isPlane(scratch) && isPlane(detection.spare_difference) &&
            isPlane(&detection.accumulator) && isPlane(&detection.motion) && scratch->data != detection.motion.data &&
            rk_size_queue(&detection.image_queue) == detection.image_queue.length &&
            rk_size_queue(&detection.skip_queue) == detection.skip_queue.length && detection.sum_is_whole;
    }

    /// The copy can be made on the way.
    static bool suitsResult(rk_image const& image, rk_image const* scratch, rk_image const* result, rk_detection const& detection)
    {
        rk_image const& motion = detection.motion;
        return rk_image_valid(result) && result->width == motion.width && result->height == motion.height &&
            result->channels == 1 && result->data != motion.data && result->data != scratch->data && result->data != image.data;
    }

    /// result: bytes for a copy of motion, or null.
    Sweep(rk_image const& image, rk_image& scratch, unsigned char* result, rk_detection& detection)
        : mImage(image)
        , mScratch(scratch.data)
        , mResult(result)
        , mDetection(detection)
        , mWidth(image.width)
        , mPrevious(*detection.previous)
        , mFresh(*detection.spare_difference)
    {
        rk_push_queue(&detection.skip_queue, &mPrevious, &detection.previous);
        rk_push_queue(&detection.image_queue, &mFresh, &detection.spare_difference);
    }

    /// motion first holds the thresholded sum of each row, and its erosion once the rows on both sides are there.
    void run()
    {
        for (size_t y = 0; y < mImage.height; ++y) {
            sum(y);
            if (y >= 2)
                erodeAcross(y - 1);
            if (y >= 3)
                erodeAlong(y - 2);
        }
        erodeAlong(mImage.height - 2);
    }

private:
    void sum(size_t y)
    {
        size_t const row = y * mWidth;
        size_t const bytes = row * mImage.channels;
        differenceRow(mPrevious.data + bytes, mImage.data + bytes, mFresh.data + row, mWidth, mImage.channels,
            pixelThreshold(mDetection.sensitivity), flagValue(mDetection));
        memcpy(mPrevious.data + bytes, mImage.data + bytes, mWidth * mImage.channels);
        moves(y) = rk_row().moving_sum(mDetection.accumulator.data + row, mDetection.spare_difference->data + row,
            mFresh.data + row, mDetection.motion.data + row, mWidth);
        if (y == 0 || y + 1 == mImage.height)
            finish(y);
    }

    void erodeAcross(size_t y)
    {
        unsigned char const* const row = mDetection.motion.data + y * mWidth;
        if (moves(y - 1) && moves(y) && moves(y + 1))
            rk_row().and3(row - mWidth, row, row + mWidth, mScratch + y * mWidth, mWidth);
        else
            memset(mScratch + y * mWidth, 0, mWidth);
    }

    void erodeAlong(size_t y)
    {
        unsigned char const* const row = mScratch + y * mWidth;
        if (moves(y))
            rk_row().and3(row, row + 1, row + 2, mDetection.motion.data + y * mWidth + 1, mWidth - 2);
        finish(y);
    }

    void finish(size_t y)
    {
        if (mResult && moves(y))
            memcpy(mResult + y * mWidth, mDetection.motion.data + y * mWidth, mWidth);
        else if (mResult)
            memset(mResult + y * mWidth, 0, mWidth);
    }

    /// Whether the sum of a row is not 0 somewhere. Of the last rows summed up.
    bool& moves(size_t y) { return mMoves[y % 3]; }

    rk_image const& mImage;
    unsigned char* const mScratch;
    unsigned char* const mResult;
    rk_detection& mDetection;
    size_t const mWidth;
    rk_image& mPrevious; // becomes a copy of the frame
    rk_image& mFresh;    // becomes the mask of this frame
    bool mMoves[3] = {};
};

/// One step after the other.
int compareByImages(rk_image const& image, rk_image* scratch, rk_detection& detection)
{
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

int copyMotion(rk_detection const& detection, rk_image* result)
{
    return result ? rk_copy_image(&detection.motion, result) : 1;
}

/// One frame once there is one to compare it with.
int compare(rk_image const& image, rk_image* scratch, rk_image* result, rk_detection& detection)
{
    if (!rk_get_image(detection.previous, image.width, image.height, image.channels))
        return 0;
    if (Sweep::suits(image, scratch, detection)) {
        bool const copies = Sweep::suitsResult(image, scratch, result, detection);
        Sweep(image, *scratch, copies ? result->data : nullptr, detection).run();
        return copies || copyMotion(detection, result);
    }
    int const done = compareByImages(image, scratch, detection);
    if (!done)
        detection.sum_is_whole = 0;
    return done && copyMotion(detection, result);
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
    if (primed)
        return compare(*image, scratch, result, *detection);
    return prime(*image, *detection) && copyMotion(*detection, result);
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
    if (current->channels != 1 && current->channels != 4)
        return 0;
    differenceRow(previous->data, current->data, result->data, result->size, current->channels, threshold, value);
    memcpy(previous->data, current->data, current->size);
    return 1;
}

int rk_combine(rk_image const* new_image, rk_image const* old_image, rk_image* accumulator)
{
    if (!rk_image_valid(new_image) || !rk_image_valid(accumulator) || new_image->size != accumulator->size)
        return 0;
    if (old_image && (!rk_image_valid(old_image) || old_image->size != accumulator->size))
        return 0;
    unsigned char* const sum = accumulator->data;
    if (old_image) {
        rk_row().running_sum(sum, old_image->data, new_image->data, accumulator->size);
        return 1;
    }
    for (size_t i = 0; i < accumulator->size; ++i)
        sum[i] = rk_combine_val(sum[i], 0, new_image->data[i]);
    return 1;
}
