#include "detection/rk_label_set.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constexpr uint32_t step = 1024; // labels: a crowded frame has a few hundred

/// By steps, not by doubling: a camera keeps what its worst frame needed.
bool enlarge(rk_label_set& set)
{
    uint32_t const capacity = set.capacity + step;
    void* const extents = realloc(set.extents, capacity * sizeof(rk_extent));
    if (extents)
        set.extents = static_cast<rk_extent*>(extents);
    void* const parents = extents ? realloc(set.parents, capacity * sizeof(uint32_t)) : nullptr;
    if (!parents) {
        printf("rk_add_vertex(...) - Unable to allocate memory for new vertices.\n");
        return false;
    }
    set.parents = static_cast<uint32_t*>(parents);
    set.capacity = capacity;
    return true;
}

/// The lowest label of the blob; paths are halved on the way.
uint32_t find(rk_label_set& set, uint32_t label)
{
    uint32_t* const parents = set.parents;
    while (parents[label] != label) {
        parents[label] = parents[parents[label]];
        label = parents[label];
    }
    return label;
}

void join(rk_extent& extent, rk_extent const& other)
{
    extent = {std::min(extent.left, other.left), std::min(extent.top, other.top), std::max(extent.right, other.right),
        std::max(extent.bottom, other.bottom)};
}

} // namespace

void rk_label_set_free(rk_label_set* set)
{
    free(set->extents);
    free(set->parents);
    *set = {};
}

int32_t rk_label_set_open(rk_label_set* set, uint32_t x, uint32_t y)
{
    if (set->count == rk_label_set_max || (set->count == set->capacity && !enlarge(*set)))
        return -1;
    set->extents[set->count] = {x, y, x, y};
    set->parents[set->count] = set->count;
    return static_cast<int32_t>(set->count++);
}

void rk_label_set_join(rk_label_set* set, uint32_t a, uint32_t b)
{
    a = find(*set, a);
    b = find(*set, b);
    if (a != b)
        set->parents[std::max(a, b)] = std::min(a, b);
}

int rk_label_set_resolve(rk_label_set* set, rk_vertex** vertices, uint32_t* count)
{
    for (uint32_t label = 0; label < set->count; ++label) {
        uint32_t const lowest = find(*set, label);
        if (lowest != label)
            join(set->extents[lowest], set->extents[label]);
    }
    rk_vertex** link = vertices;
    for (uint32_t label = 0; label < set->count; ++label) {
        if (set->parents[label] != label)
            continue;
        rk_extent const& extent = set->extents[label];
        rk_vertex* const blob = new (std::nothrow)
            rk_vertex{extent.left, extent.top, extent.right - extent.left, extent.bottom - extent.top, 1.0f, nullptr};
        if (!blob) {
            printf("rk_resolve_graph(...) - Unable to allocate memory for new vertex.\n");
            return 0;
        }
        *link = blob;
        link = &blob->next;
        ++*count;
    }
    return 1;
}
