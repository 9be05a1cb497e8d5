#include "detection/rk_object_list.h"
#include "detection/rk_candidate.h"
#include "detection/rk_object.h"
#include "detection/rk_tracker_frame.h"

#include <cstdlib>

static constexpr uint32_t START_MATCHES = 100;
static constexpr uint32_t START_CANDIDATES = 10;

/// count zeroed records, or null. Asks for one at least, so that null always means failure.
template <class T> static T* allocate(uint64_t count)
{
    if (count > UINT32_MAX)
        return nullptr;
    return static_cast<T*>(std::calloc(count ? static_cast<size_t>(count) : 1, sizeof(T)));
}

/// Replaces a buffer by a zeroed one, or leaves it when there is no memory.
template <class T> static int replace(T*& buffer, uint32_t& size, uint64_t new_size)
{
    T* const fresh = allocate<T>(new_size);
    if (!fresh)
        return 0;
    std::free(buffer);
    buffer = fresh;
    size = static_cast<uint32_t>(new_size);
    return 1;
}

int rk_object_list_init(rk_object_list* list, uint32_t is_static)
{
    if (!list)
        return 0;
    *list = rk_object_list{};
    list->next_id = 1;
    list->is_static = is_static;
    if (replace(list->matches, list->matches_size, START_MATCHES) &&
        replace(list->candidates, list->candidates_size, START_CANDIDATES))
        return 1;
    rk_object_list_free(list);
    return 0;
}

static void free_chain(rk_object*& chain)
{
    while (chain) {
        rk_object* const next = chain->next;
        std::free(chain);
        chain = next;
    }
}

void rk_object_list_free(rk_object_list* list)
{
    if (!list)
        return;
    free_chain(list->objects);
    free_chain(list->dead);
    std::free(list->matches);
    std::free(list->candidates);
    list->count = list->matches_size = list->candidates_size = 0;
    list->matches = nullptr;
    list->candidates = nullptr;
}

static int resize_candidates(rk_object_list* list, uint32_t need)
{
    if (list->candidates_size < need)
        return replace(list->candidates, list->candidates_size, uint64_t(need) * 2);
    if (list->candidates_size > START_CANDIDATES && uint64_t(need) * 3 < list->candidates_size)
        return replace(list->candidates, list->candidates_size, list->candidates_size / 2);
    return 1;
}

static int resize_matches(rk_object_list* list, uint64_t need)
{
    if (need > list->matches_size)
        return need <= UINT32_MAX / 2 && replace(list->matches, list->matches_size, need * 2);
    // Only a list that has seen many candidates gives room for matches back.
    if (list->candidates_size > START_MATCHES && need * 3 < list->matches_size)
        return replace(list->matches, list->matches_size, list->matches_size / 2);
    return 1;
}

int rk_object_list_resize_buffers(rk_object_list* list, uint32_t candidate_count)
{
    return list && resize_candidates(list, candidate_count) && resize_matches(list, uint64_t(list->count) * candidate_count);
}

/// Memory for a new object: of a dead one, or fresh.
static rk_object* obtain(rk_object_list* list)
{
    rk_object* const object = list->dead;
    if (!object)
        return allocate<rk_object>(1);
    list->dead = object->next;
    return object;
}

rk_object* rk_object_list_push(rk_tracker_frame const* frame, rk_object_list* list, rk_candidate const* candidate)
{
    if (!frame || !list || !candidate || !candidate->vertex)
        return nullptr;
    rk_object* const object = obtain(list);
    if (!object)
        return nullptr;
    rk_bbox const box = rk_candidate_box(*candidate);
    auto const init = list->is_static ? rk_object_static_init : rk_object_init;
    init(object, frame, &box, candidate->histograms, candidate->motion_score, list->next_id++);
    object->next = list->objects;
    list->objects = object;
    ++list->count;
    return object;
}

rk_object* rk_object_list_find(rk_object_list const* list, uint32_t id)
{
    rk_object* object = list ? list->objects : nullptr;
    while (object && object->id != id)
        object = object->next;
    return object;
}

int rk_object_list_remove(rk_object_list* list, uint32_t id)
{
    if (!list)
        return 0;
    rk_object** link = &list->objects;
    while (*link && (*link)->id != id)
        link = &(*link)->next;
    return rk_object_list_erase(list, link);
}

int rk_object_list_erase(rk_object_list* list, rk_object** link)
{
    if (!list || !link || !*link)
        return 0;
    rk_object* const object = *link;
    *link = object->next;
    object->next = list->dead;
    list->dead = object;
    --list->count;
    return 1;
}

/// Whether an object without a match goes at once or may wait.
static bool goes(rk_tracker_frame const* frame, rk_object_list const* list, rk_object const* object)
{
    return list->is_static || rk_object_near_death(object, frame->now, frame->defer_time) ||
        rk_object_near_edge(&object->bbox, frame->image) ||
        rk_object_near_segment(&object->bbox, frame->segments, frame->segment_count);
}

int rk_object_list_update(rk_tracker_frame const* frame, rk_object_list* list)
{
    if (!frame || !list || !frame->image)
        return 0;
    free_chain(list->dead);
    auto const take_in = list->is_static ? rk_object_static_update : rk_object_update;
    rk_object** link = &list->objects;
    while (rk_object* const object = *link) {
        if (take_in(object, frame)) {
            object->lost_time = 0;
        } else if (goes(frame, list, object)) {
            rk_object_list_erase(list, link);
            continue;
        } else {
            if (object->lost_time == 0)
                object->lost_time = frame->now;
            object->estimate = object->bbox;
        }
        link = &object->next;
    }
    return 1;
}
