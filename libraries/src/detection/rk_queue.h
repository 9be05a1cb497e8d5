#pragma once

#include "image/rk_image.h"

#include <cstdint>

/// A ring of images that keeps the last `length` of them. The slots own their images: one that has been popped stays in its
/// slot until it is pushed again, so that every image is freed exactly once. Whoever replaces an image in a popped pointer
/// keeps the record and exchanges its contents.
struct rk_queue {
    uint32_t length;  ///< images that the queue keeps
    rk_image** begin; ///< length + 1 slots
    rk_image** end;   ///< one past the last slot
    rk_image** tail;  ///< where the next image is written
    rk_image** head;  ///< the oldest image
};

/// length + 1 empty slots. Does not look at what the record held. 0 for a missing record or a failed allocation.
int rk_init_queue(rk_queue* queue, uint32_t length);

/// Frees every image in every slot, popped ones included, and clears the record.
void rk_deinit_queue(rk_queue* queue);

/// Takes image over. With more than `length` images in the ring the oldest comes back in popped, to be used again and pushed
/// again; otherwise popped becomes null. Returns 0 for a missing argument or a queue without slots.
int rk_push_queue(rk_queue* queue, rk_image* image, rk_image** popped);

/// Images in the ring; 0 for a missing queue.
uint32_t rk_size_queue(rk_queue const* queue);

/// The slot behind this one, wrapping from the last to the first.
rk_image** rk_next_next(rk_queue const* queue, rk_image** slot);
