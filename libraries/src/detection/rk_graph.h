#pragma once

#include "image/rk_vertex.h"

#include <cstdint>

/// Provisional labels and which of them are one blob. The matrix of equivalences is dense, so it serves frames with few
/// labels and as the plain definition that rk_conncomp_process is compared with.
struct rk_graph {
    rk_vertex* vertices; ///< capacity entries, one box per label; next is not used here. Owned.
    uint32_t* edges;     ///< capacity x capacity, row by row: 1 where two labels are equivalent; symmetric. Owned.
    uint32_t capacity;
    uint32_t count; ///< vertices in use
};

/// Room for capacity vertices, none in use. Does not look at what the record held. 0 for a missing record, a capacity of 0,
/// or a failed allocation, which includes a matrix that the address space cannot hold.
int rk_init_graph(rk_graph* graph, uint32_t capacity);

/// Frees the arrays and clears the record.
void rk_free_graph(rk_graph* graph);

/// Takes all vertices out; the capacity stays.
void rk_clear_graph(rk_graph* graph);

/// Appends a copy of the vertex's box without edges, doubling the arrays if needed. Returns its index, or -1 for a missing
/// argument, a graph without arrays or a failed allocation; the graph is then as before.
int rk_add_vertex(rk_graph* graph, rk_vertex const* vertex);

/// Marks with 1 in reached (count entries) every vertex that can be reached over edges from vertex. A vertex without edges
/// reaches nothing, not even itself. 0 for a missing argument, a vertex that is not there or a failed allocation.
int rk_get_reachable(rk_graph const* graph, uint32_t vertex, uint32_t* reached);

/// One new rk_vertex with motion_score 1 for each set of equivalent vertices, with the box around them all, in the order of
/// their lowest index. vertices receives the head of the list and count its length, both also after a failure (0), when the
/// list may be partial; the caller owns it.
int rk_resolve_graph(rk_graph const* graph, rk_vertex** vertices, uint32_t* count);

/// Grows a box by one point. width and height are extents: largest coordinate minus smallest.
inline void rk_vertex_grow(rk_vertex* box, uint32_t x, uint32_t y)
{
    if (x < box->x) {
        box->width += box->x - x;
        box->x = x;
    } else if (x >= box->x + box->width) {
        box->width = x - box->x;
    }
    if (y < box->y) {
        box->height += box->y - y;
        box->y = y;
    } else if (y >= box->y + box->height) {
        box->height = y - box->y;
    }
}

/// Grows a box by the two corners of another.
inline void rk_vertex_join(rk_vertex* box, rk_vertex const* other)
{
    rk_vertex_grow(box, other->x, other->y);
    rk_vertex_grow(box, other->x + other->width, other->y + other->height);
}
