#include "detection/rk_graph.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

uint32_t* newEdges(uint32_t capacity)
{
    size_t const cells = size_t(capacity) * capacity;
    if (cells / capacity != capacity || cells > SIZE_MAX / sizeof(uint32_t))
        return nullptr;
    return static_cast<uint32_t*>(calloc(cells, sizeof(uint32_t)));
}

rk_vertex* newVertices(uint32_t capacity)
{
    return static_cast<rk_vertex*>(calloc(capacity, sizeof(rk_vertex)));
}

/// Doubles both arrays; rows of the new matrix are twice as long.
bool enlarge(rk_graph& graph)
{
    if (graph.capacity > UINT32_MAX / 2)
        return false;
    uint32_t const capacity = graph.capacity * 2;
    rk_vertex* const vertices = newVertices(capacity);
    if (!vertices) {
        printf("rk_add_vertex(...) - Unable to allocate memory for new vertices.\n");
        return false;
    }
    uint32_t* const edges = newEdges(capacity);
    if (!edges) {
        printf("rk_add_vertex(...) - Unable to allocate memory for new edges.\n");
        free(vertices);
        return false;
    }
    memcpy(vertices, graph.vertices, graph.count * sizeof(rk_vertex));
    for (uint32_t row = 0; row < graph.count; ++row)
        memcpy(edges + size_t(row) * capacity, graph.edges + size_t(row) * graph.capacity, graph.count * sizeof(uint32_t));
    free(graph.vertices);
    free(graph.edges);
    graph = {vertices, edges, capacity, graph.count};
    return true;
}

} // namespace

int rk_init_graph(rk_graph* graph, uint32_t capacity)
{
    if (!graph || capacity == 0)
        return 0;
    *graph = {};
    rk_vertex* const vertices = newVertices(capacity);
    if (!vertices) {
        printf("rk_init_graph(...) - Unable to allocate memory for new vertices.\n");
        return 0;
    }
    uint32_t* const edges = newEdges(capacity);
    if (!edges) {
        printf("rk_init_graph(...) - Unable to allocate memory for new edges.\n");
        free(vertices);
        return 0;
    }
    *graph = {vertices, edges, capacity, 0};
    return 1;
}

void rk_free_graph(rk_graph* graph)
{
    if (!graph)
        return;
    free(graph->vertices);
    free(graph->edges);
    *graph = {};
}

void rk_clear_graph(rk_graph* graph)
{
    if (!graph || !graph->vertices || !graph->edges)
        return;
    memset(static_cast<void*>(graph->vertices), 0, graph->count * sizeof(rk_vertex));
    for (uint32_t row = 0; row < graph->count; ++row)
        memset(graph->edges + size_t(row) * graph->capacity, 0, graph->count * sizeof(uint32_t));
    graph->count = 0;
}

int rk_add_vertex(rk_graph* graph, rk_vertex const* vertex)
{
    if (!graph || !graph->vertices || !graph->edges || !vertex)
        return -1;
    if (graph->capacity <= graph->count + 1 && !enlarge(*graph))
        return -1;
    graph->vertices[graph->count] = {vertex->x, vertex->y, vertex->width, vertex->height, 0.0f, nullptr};
    return static_cast<int>(graph->count++);
}

int rk_get_reachable(rk_graph const* graph, uint32_t vertex, uint32_t* reached)
{
    if (!graph || !graph->edges || !reached || vertex >= graph->count)
        return 0;
    // A stack of our own: a chain of labels may be longer than the thread's stack is deep. Every vertex enters it once.
    uint32_t* const waiting = static_cast<uint32_t*>(malloc((size_t(graph->count) + 1) * sizeof(uint32_t)));
    if (!waiting)
        return 0;
    uint32_t depth = 0;
    waiting[depth++] = vertex;
    while (depth > 0) {
        uint32_t const* const row = graph->edges + size_t(waiting[--depth]) * graph->capacity;
        for (uint32_t other = 0; other < graph->count; ++other)
            if (row[other] && !reached[other]) {
                reached[other] = 1;
                waiting[depth++] = other;
            }
    }
    free(waiting);
    return 1;
}

int rk_resolve_graph(rk_graph const* graph, rk_vertex** vertices, uint32_t* count)
{
    if (!graph || !vertices || !count)
        return 0;
    *vertices = nullptr;
    *count = 0;
    if (graph->count == 0)
        return 1;
    uint32_t* const visited = static_cast<uint32_t*>(calloc(size_t(graph->count) * 2, sizeof(uint32_t)));
    if (!visited) {
        printf("rk_resolve_graph(...) - Unable to allocate memory for new vertices.\n");
        return 0;
    }
    uint32_t* const reached = visited + graph->count;
    rk_vertex** link = vertices;
    int result = 1;
    for (uint32_t v = 0; result && v < graph->count; ++v) {
        if (visited[v])
            continue;
        memset(reached, 0, graph->count * sizeof(uint32_t));
        result = rk_get_reachable(graph, v, reached);
        rk_vertex box = graph->vertices[v];
        for (uint32_t w = 0; w < graph->count; ++w)
            if (reached[w]) {
                visited[w] = 1;
                rk_vertex_join(&box, graph->vertices + w);
            }
        rk_vertex* const blob = new (std::nothrow) rk_vertex;
        if (!blob) {
            printf("rk_resolve_graph(...) - Unable to allocate memory for new vertex.\n");
            result = 0;
            break;
        }
        *blob = {box.x, box.y, box.width, box.height, 1.0f, nullptr};
        *link = blob;
        link = &blob->next;
        ++*count;
    }
    free(visited);
    return result;
}
