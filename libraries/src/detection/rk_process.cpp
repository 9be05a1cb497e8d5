#include "detection/rk_detection.h"

#include "image/rk_morphology.h"
#include "image/rk_row.h"
#include "image/rk_threshold.h"

#include <algorithm>
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

// No two bytes are further apart than 255, no two pixels further than 442.
uint8_t byteThreshold(uint32_t threshold)
{
    return static_cast<uint8_t>(std::min(threshold, 255u));
}

/// Row-wise difference of two pictures of the same channels, 1 or 4.
void differenceRow(unsigned char const* previous, unsigned char const* current, unsigned char* result, size_t pixels,
    uint32_t channels, uint32_t threshold, unsigned char value)
{
    if (channels == 1)
        rk_row().difference(previous, current, result, pixels, byteThreshold(threshold), value);
    else
        rk_row().difference_colour(
            previous, current, result, pixels, rk_square(static_cast<int>(std::min(threshold, 1000u))), value);
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

/// All steps of a frame in one walk over its rows, so that each byte is fetched once, and masks, sum and motion not at all where
/// nothing has moved for longer than a mask stays in the queue. What it leaves in the masks, in the sum, in scratch and in motion
/// is what the steps leave that are taken one after the other.
class Sweep {
public:
    /// Both queues are full, and every image has the frame's size: then nothing in here can fail.
    static bool suits(rk_image const& image, rk_image const* scratch, rk_detection& detection)
    {
        size_t const pixels = size_t(image.width) * image.height;
        auto const isPlane = [=](rk_image const* plane) {
            return rk_image_valid(plane) && plane->channels == 1 && plane->size == pixels;
        };
        return !rk_row_is_plain() && image.height >= 3 && image.width >= 3 && detection.previous->channels == image.channels &&
            detection.previous->size == image.size && isPlane(scratch) && isPlane(detection.spare_difference) &&
            isPlane(&detection.accumulator) && isPlane(&detection.motion) && scratch->data != detection.motion.data &&
            rk_size_queue(&detection.image_queue) == detection.image_queue.length &&
            rk_size_queue(&detection.skip_queue) == detection.skip_queue.length && detection.sum_is_whole &&
            ensureRoom(image, detection);
    }

    /// The copy can be made on the way.
    static bool suitsResult(rk_image const& image, rk_image const* scratch, rk_image const* result, rk_detection const& detection)
    {
        rk_image const& motion = detection.motion;
        return rk_image_valid(result) && result->width == motion.width && result->height == motion.height &&
            result->channels == 1 && result->data != motion.data && result->data != scratch->data && result->data != image.data;
    }

    /// scratch: bytes that receive the erosion's first pass, or null. result: bytes for a copy of motion, or null. knowsResult:
    /// nobody else has written there since the last sweep did.
    Sweep(rk_image const& image, unsigned char* scratch, unsigned char* result, bool knowsResult, rk_detection& detection)
        : mImage(image)
        , mScratch(scratch)
        , mResult(result)
        , mDetection(detection)
        , mWidth(image.width)
        , mRuns(runs(image))
        , mStill(detection.still)
        , mIsClear(mStill + mRuns * image.height)
        , mDiffers(mIsClear + image.height)
        , mDifference(mDiffers + mRuns)
        , mLines(mDifference + mWidth)
        , mPrevious(*detection.previous)
        , mFresh(*detection.spare_difference)
    {
        rk_push_queue(&detection.skip_queue, &mPrevious, &detection.previous);
        rk_push_queue(&detection.image_queue, &mFresh, &detection.spare_difference);
        if (!knowsResult || result != detection.result)
            memset(mIsClear, 0, image.height);
        detection.result = result;
    }

    /// motion first holds the thresholded sum of each row, and its erosion once the rows on both sides are there.
    void run()
    {
        for (size_t y = 0; y < mImage.height; ++y) {
            compare(y);
            sum(y);
            if (y >= 2)
                erodeAcross(y - 1);
            if (y >= 3)
                erodeAlong(y - 2);
        }
        erodeAlong(mImage.height - 2);
    }

private:
    /// Columns of a row outside of which its sum is 0.
    struct Span {
        size_t from, end;

        bool isEmpty() const { return from >= end; }
    };

    static size_t runs(rk_image const& image) { return (image.width + rk_row_run - 1) / rk_row_run; }

    static bool ensureRoom(rk_image const& image, rk_detection& detection)
    {
        if (!detection.still)
            detection.still =
                static_cast<uint8_t*>(calloc((runs(image) + 1) * (size_t(image.height) + 1) + 3 * size_t(image.width), 1));
        return detection.still;
    }

    /// Writes zeros where the processor does not see by itself that the rows below are next.
    static void clear(unsigned char* bytes, size_t count)
    {
        constexpr size_t ahead = 2048, line = 64; // bytes
        for (size_t i = 0; i < count; i += line)
            __builtin_prefetch(reinterpret_cast<void const*>(reinterpret_cast<uintptr_t>(bytes) + ahead + i), 1);
        memset(bytes, 0, count);
    }

    /// The row's mask, and the frame into its copy.
    void compare(size_t y)
    {
        size_t const row = y * mWidth * mImage.channels;
        uint32_t const threshold = pixelThreshold(mDetection.sensitivity);
        if (mImage.channels == 1) {
            rk_row().renew(mPrevious.data + row, mImage.data + row, mDifference, mWidth, byteThreshold(threshold),
                flagValue(mDetection), mDiffers);
            return;
        }
        differenceRow(
            mPrevious.data + row, mImage.data + row, mDifference, mWidth, mImage.channels, threshold, flagValue(mDetection));
        memcpy(mPrevious.data + row, mImage.data + row, mWidth * mImage.channels);
        for (size_t run = 0; run < mRuns; ++run) {
            unsigned char const* const first = mDifference + run * rk_row_run;
            mDiffers[run] = std::any_of(first, first + runLength(run), [](unsigned char mask) { return mask != 0; });
        }
    }

    void sum(size_t y)
    {
        Span& span = spanOf(y) = {mWidth, 0};
        for (size_t run = 0; run < mRuns; ++run) {
            uint8_t& still = mStill[y * mRuns + run];
            // Then the mask that is used again is as empty as all others, and the sum and motion are 0.
            bool const isSettled = !mDiffers[run] && still > mDetection.image_queue.length;
            still = mDiffers[run] ? 0 : static_cast<uint8_t>(std::min(still + 1, 255));
            if (isSettled)
                continue;
            size_t const x = run * rk_row_run;
            size_t const i = y * mWidth + x;
            size_t const length = runLength(run);
            memcpy(mFresh.data + i, mDifference + x, length);
            if (rk_row().moving_sum(mDetection.accumulator.data + i, mDetection.spare_difference->data + i, mDifference + x,
                    mDetection.motion.data + i, length))
                span = {std::min(span.from, x), x + length};
        }
        if (y == 0 || y + 1 == mImage.height)
            finish(y);
    }

    void erodeAcross(size_t y)
    {
        Span const span = spanOf(y);
        if (mScratch)
            clear(between(y), mWidth);
        else if (!span.isEmpty())
            memset(between(y), 0, mWidth);
        size_t const from = std::max({spanOf(y - 1).from, span.from, spanOf(y + 1).from});
        size_t const end = std::min({spanOf(y - 1).end, span.end, spanOf(y + 1).end});
        unsigned char const* const row = mDetection.motion.data + y * mWidth + from;
        if (from < end)
            rk_row().and3(row - mWidth, row, row + mWidth, between(y) + from, end - from);
    }

    void erodeAlong(size_t y)
    {
        size_t const from = std::max<size_t>(spanOf(y).from, 1);
        size_t const end = std::min(spanOf(y).end, mWidth - 1);
        unsigned char const* const row = between(y) + from;
        if (from < end)
            rk_row().and3(row - 1, row, row + 1, mDetection.motion.data + y * mWidth + from, end - from);
        finish(y);
    }

    void finish(size_t y)
    {
        if (!mResult)
            return;
        Span const span = spanOf(y);
        if (!mIsClear[y])
            clear(mResult + y * mWidth, mWidth);
        if (!span.isEmpty())
            memcpy(mResult + y * mWidth + span.from, mDetection.motion.data + y * mWidth + span.from, span.end - span.from);
        mIsClear[y] = span.isEmpty();
    }

    size_t runLength(size_t run) const { return std::min(rk_row_run, mWidth - run * rk_row_run); }

    /// Of the last rows summed up.
    Span& spanOf(size_t y) { return mSpans[y % 3]; }

    /// The row between the erosion's passes: along comes behind the next row's across.
    unsigned char* between(size_t y) { return mScratch ? mScratch + y * mWidth : mLines + y % 2 * mWidth; }

    rk_image const& mImage;
    unsigned char* const mScratch;
    unsigned char* const mResult;
    rk_detection& mDetection;
    size_t const mWidth;
    size_t const mRuns; // in a row
    uint8_t* const mStill;
    uint8_t* const mIsClear;    // by rows, whether result is known to be 0
    uint8_t* const mDiffers;    // by runs, whether mDifference holds anything
    uint8_t* const mDifference; // the mask of the row in work
    uint8_t* const mLines;      // two rows, where scratch does not take them
    rk_image& mPrevious;        // becomes a copy of the frame
    rk_image& mFresh;           // becomes the mask of this frame
    Span mSpans[3] = {};
};

/// What the sweep has not seen.
void forgetStillness(rk_detection& detection)
{
    free(detection.still);
    detection.still = nullptr;
    detection.result = nullptr;
}

enum class Caller { seesAll, seesResult };

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
int compare(rk_image const& image, rk_image* scratch, rk_image* result, Caller caller, rk_detection& detection)
{
    if (!rk_get_image(detection.previous, image.width, image.height, image.channels))
        return 0;
    if (Sweep::suits(image, scratch, detection)) {
        bool const copies = Sweep::suitsResult(image, scratch, result, detection);
        bool const seesAll = caller == Caller::seesAll;
        Sweep(image, seesAll ? scratch->data : nullptr, copies ? result->data : nullptr, !seesAll, detection).run();
        return copies || copyMotion(detection, result);
    }
    forgetStillness(detection);
    int const done = compareByImages(image, scratch, detection);
    if (!done)
        detection.sum_is_whole = 0;
    return done && copyMotion(detection, result);
}

int process(rk_image const* image, rk_image* scratch, rk_image* result, Caller caller, rk_detection* detection)
{
    if (!detection || !detection->initialized || !rk_image_valid(image) || (image->channels != 1 && image->channels != 4))
        return 0;
    if (image->width != detection->motion.width || image->height != detection->motion.height)
        if (!rk_detection_reset(detection))
            return 0;
    bool const primed = rk_image_valid(&detection->motion) && detection->previous;
    if (primed)
        return compare(*image, scratch, result, caller, *detection);
    return prime(*image, *detection) && copyMotion(*detection, result);
}

} // namespace

int rk_process(rk_image const* image, rk_image* scratch, rk_image* result, rk_detection* detection)
{
    return process(image, scratch, result, Caller::seesAll, detection);
}

int rk_process_motion(rk_image const* image, rk_image* scratch, rk_image* result, rk_detection* detection)
{
    return process(image, scratch, result, Caller::seesResult, detection);
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
