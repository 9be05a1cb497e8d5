#include "detection/rk_queue.h"

#include <cstdio>
#include <cstdlib>

int rk_init_queue(rk_queue* queue, uint32_t length)
{
    if (!queue || length == UINT32_MAX)
        return 0;
    rk_image** const slots = static_cast<rk_image**>(calloc(size_t(length) + 1, sizeof(rk_image*)));
    if (!slots) {
        printf("rk_init_queue(...) - Unable to allocate memory for pArrayBegin.\n");
        return 0;
    }
    *queue = {length, slots, slots + length + 1, slots, slots};
    return 1;
}

void rk_deinit_queue(rk_queue* queue)
{
    if (!queue)
        return;
    for (rk_image** slot = queue->begin; slot != queue->end; ++slot) {
        rk_free_image(*slot);
        free(*slot);
    }
    free(queue->begin);
    *queue = {};
}

int rk_push_queue(rk_queue* queue, rk_image* image, rk_image** popped)
{
    if (!queue || !queue->begin || !image || !popped)
        return 0;
    *queue->tail = image;
    queue->tail = rk_next_next(queue, queue->tail);
    *popped = nullptr;
    if (queue->tail == queue->head) {
        *popped = *queue->head;
        queue->head = rk_next_next(queue, queue->head);
    }
    return 1;
}

uint32_t rk_size_queue(rk_queue const* queue)
{
    if (!queue)
        return 0;
    if (queue->tail >= queue->head)
        return static_cast<uint32_t>(queue->tail - queue->head);
    return static_cast<uint32_t>((queue->end - queue->head) + (queue->tail - queue->begin));
}

rk_image** rk_next_next(rk_queue const* queue, rk_image** slot)
{
    ++slot;
    return slot == queue->end ? queue->begin : slot;
}
