#pragma once

#include "detection/rk_conncomp.h"
#include "detection/rk_kernel.h"
#include "detection/rk_queue.h"
#include "image/rk_image.h"

#include <cstdint>

/// The whole state of the low-level extraction: a temporal difference detector (what moved lately), and the kernel and
/// labels that connected components work with.
///
/// The detector compares a frame with one a fixed number of frames older, keeps the last few masks of difference in a
/// queue and their sum beside it: a pixel is in motion when any of them flagged it. A skip queue of length s compares frame
/// n with frame n - (s + 1); the first s + 1 frames only fill the queue, and motion stays empty until both queues are full.
struct rk_detection {
    rk_queue image_queue; ///< difference masks of the last frames
    rk_image motion;      ///< one channel, 0 or 255: the result of the last complete frame
    rk_conncomp conncomp;
    rk_image* previous;         ///< the frame to compare with, out of skip_queue, whose slot owns it; null until that has filled
    rk_queue skip_queue;        ///< frames waiting to become previous
    rk_image* spare_difference; ///< the mask that left image_queue, whose slot owns it; null until that has filled
    rk_image accumulator;       ///< one channel: sum of the masks in image_queue
    rk_kernel kernel;
    float sensitivity; ///< 0 to 1
    uint32_t initialized;

    /// For speed: not 0 when all masks in image_queue went into accumulator, and motion came of it, so that both are 0 wherever
    /// it is 0. The functions below see to that; whoever writes into these images by hand clears it.
    uint32_t sum_is_whole;

    /// For speed: by runs of rk_row_run pixels, row by row, for how many frames the masks have been empty, as far as a byte
    /// counts; behind that what the sweep over a frame needs. Null until all queues have filled, and after a frame that was
    /// not counted.
    uint8_t* still;
    unsigned char const* result; ///< where the last sweep left a copy of motion; null when it left none, or still is null
};

/// Any value that is not 0 becomes 255.
extern unsigned char const g_ThresholdTable[256];

/// Clears the record and builds it with a skip queue of length 1. image_queue_length: at least 1.
/// 0, with a message on standard output, when something cannot be had; the record is then clear.
int rk_detection_init(float sensitivity, uint32_t kernel_width, uint32_t kernel_height, uint32_t kernel_type,
    uint32_t image_queue_length, rk_detection* detection);

/// Frees everything and clears the record. Does nothing unless it is initialized.
void rk_detection_deinit(rk_detection* detection);

/// Forgets all frames; sensitivity, kernel and queue lengths stay. 0 as rk_detection_init.
int rk_detection_reset(rk_detection* detection);

/// One frame. image: 1 or 4 channels; of four, the fourth is ignored. scratch: one channel of the frame's size, for the
/// erosion. result: becomes a copy of motion; may be null. A frame of another size resets the record first.
/// 0 for a missing or wrong argument, an uninitialized record, or memory that cannot be had.
int rk_process(rk_image const* image, rk_image* scratch, rk_image* result, rk_detection* detection);

/// The same for a caller who looks at nothing but result, and leaves it to this function: what scratch then holds is not
/// defined, and a result that the call before wrote must still be as that left it.
int rk_process_motion(rk_image const* image, rk_image* scratch, rk_image* result, rk_detection* detection);

/// Replace a queue by an empty one of the new length; do nothing unless the record is initialized.
void rk_set_imageq_len(uint32_t length, rk_detection* detection);
void rk_set_skip_imageq_len(uint32_t length, rk_detection* detection);

/// Lengths of the queues; 4294967295 for a missing record.
uint32_t rk_get_imageq_len(rk_detection const* detection);
uint32_t rk_get_skip_imageq_len(rk_detection const* detection);

/// Builds another kernel; does nothing unless the record is initialized.
void rk_set_kernel(uint32_t width, uint32_t height, uint32_t type, rk_detection* detection);

/// Gives accumulator and motion this size, one channel, all 0. 0 when memory cannot be had.
int rk_resize_images(uint32_t width, uint32_t height, rk_detection* detection);

/// image itself when it has that channel count, whatever its size; otherwise the same record made anew as width x height, or
/// a new record when image is null, which the caller then owns. Null when memory cannot be had.
rk_image* rk_get_image(rk_image* image, uint32_t width, uint32_t height, uint32_t channels);

/// The difference step: result (one channel) becomes value where current is further than threshold from previous (absolute
/// difference, or distance over the first three of four channels) and 0 elsewhere; then current is copied over previous.
/// All of one size, current and previous of 1 or 4 channels. 0 for a missing argument or shapes that do not fit.
int rk_threshold(rk_image* previous, rk_image const* current, rk_image* result, uint32_t threshold, unsigned char value);

/// The running sum: accumulator = accumulator - old_image + new_image, byte by byte, wrapping. old_image may be null.
/// 0 for another missing argument or differing sizes in bytes.
int rk_combine(rk_image const* new_image, rk_image const* old_image, rk_image* accumulator);

/// The same for one byte.
inline unsigned char rk_combine_val(unsigned char accumulator, unsigned char old_value, unsigned char new_value)
{
    return static_cast<unsigned char>(accumulator - old_value + new_value);
}

inline int rk_square(int value)
{
    return value * value;
}
