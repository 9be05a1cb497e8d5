#include "detection/rk_conncomp.h"

#include "detection/rk_conncomp_runs.h"
#include "image/rk_row.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

// The walk over single pixels, as labelling is defined, for two keepers of labels: the graph with its dense matrix, and a forest.

namespace {

struct GraphKeeper {
    rk_graph* graph;

    int32_t open(uint32_t x, uint32_t y)
    {
        rk_vertex const box = {x, y, 0, 0, 0.0f, nullptr};
        return graph->count < rk_label_set_max ? rk_add_vertex(graph, &box) : -1;
    }
    void join(uint32_t a, uint32_t b)
    {
        graph->edges[size_t(a) * graph->capacity + b] = 1;
        graph->edges[size_t(b) * graph->capacity + a] = 1;
    }
    void grow(uint32_t label, uint32_t x, uint32_t y) { rk_vertex_grow(graph->vertices + label, x, y); }
};

struct SetKeeper {
    rk_label_set* set;

    int32_t open(uint32_t x, uint32_t y) { return rk_label_set_open(set, x, y); }
    void join(uint32_t a, uint32_t b) { rk_label_set_join(set, a, b); }
    void grow(uint32_t label, uint32_t x, uint32_t y) { rk_label_set_grow(set, label, x, x, y); }
};

/// A label image of the frame's size with the kernel's margin, all cells without label.
bool prepareLabels(rk_image const& image, rk_conncomp& conncomp, rk_kernel const& kernel)
{
    uint64_t const cells = (uint64_t(image.width) + kernel.width - 1) * (uint64_t(image.height) + kernel.half_height);
    if (cells > UINT32_MAX)
        return false;
    if (conncomp.label_count != cells) {
        free(conncomp.labels);
        conncomp.labels = static_cast<int16_t*>(malloc(cells * sizeof(int16_t)));
        conncomp.label_count = conncomp.labels ? static_cast<uint32_t>(cells) : 0;
        if (!conncomp.labels)
            return false;
    }
    memset(conncomp.labels, 0xff, cells * sizeof(int16_t));
    return true;
}

/// The label for a foreground pixel, -1 when its window has none. topLeft: the first cell of its window. A window with two labels
/// records their equivalence and the later one wins; at most one equivalence is recorded for a pixel.
template <class Keeper> int32_t labelFromWindow(int16_t const* topLeft, uint32_t stride, rk_kernel const& kernel, Keeper& keeper)
{
    int32_t current = -1;
    for (uint32_t row = 0; row <= kernel.half_height; ++row)
        for (uint32_t column = 0; column < kernel.width; ++column) {
            int16_t const label = topLeft[size_t(row) * stride + column];
            if (kernel.mask[row * kernel.width + column] == rk_kernel_outside || label < 0 || label == current)
                continue;
            if (current >= 0) {
                keeper.join(static_cast<uint32_t>(current), static_cast<uint32_t>(label));
                return label;
            }
            current = label;
        }
    return current;
}

template <class Keeper>
bool labelPixels(rk_image const& image, uint32_t threshold, rk_conncomp& conncomp, rk_kernel const& kernel, Keeper keeper)
{
    if (!prepareLabels(image, conncomp, kernel)) {
        printf("rk_label_image(...) - Unable to allocate memory for g_pLabelImg.\n");
        return false;
    }
    uint32_t const stride = image.width + kernel.width - 1;
    for (uint32_t y = 0; y < image.height; ++y)
        for (uint32_t x = 0; x < image.width; ++x) {
            if (image.data[x + size_t(y) * image.width] < threshold)
                continue;
            int16_t* const topLeft = conncomp.labels + size_t(y) * stride + x;
            int32_t label = labelFromWindow(topLeft, stride, kernel, keeper);
            if (label < 0)
                label = keeper.open(x, y);
            if (label < 0)
                return false;
            topLeft[size_t(kernel.half_height) * stride + kernel.half_width] = static_cast<int16_t>(label);
            keeper.grow(static_cast<uint32_t>(label), x, y);
        }
    return true;
}

bool usable(rk_image const* image, rk_conncomp const* conncomp, rk_kernel const* kernel)
{
    return conncomp && kernel && kernel->mask && rk_image_valid(image) && image->channels == 1;
}

bool labelInto(rk_label_set& set, rk_image const& image, uint32_t threshold, rk_conncomp& conncomp, rk_kernel const& kernel)
{
    set.count = 0;
    return rk_row_is_plain() ? labelPixels(image, threshold, conncomp, kernel, SetKeeper{&set})
                             : rk_label_runs(&image, threshold, &conncomp, &kernel);
}

} // namespace

int rk_conncomp_init(uint32_t capacity, rk_conncomp* conncomp)
{
    if (!conncomp)
        return 0;
    *conncomp = {};
    conncomp->graph = static_cast<rk_graph*>(calloc(1, sizeof(rk_graph)));
    if (!conncomp->graph || !rk_init_graph(conncomp->graph, capacity)) {
        printf("rk_conncomp_init(...) - Unable to allocate memory for g_pGraph.\n");
        rk_conncomp_deinit(conncomp);
        return 0;
    }
    return 1;
}

void rk_conncomp_deinit(rk_conncomp* conncomp)
{
    if (!conncomp)
        return;
    rk_free_graph(conncomp->graph);
    free(conncomp->graph);
    free(conncomp->labels);
    rk_label_set_free(&conncomp->set);
    free(conncomp->room);
    *conncomp = {};
}

int rk_conncomp_process(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel,
    rk_vertex** vertices, uint32_t* count)
{
    if (!vertices || !count)
        return 0;
    *vertices = nullptr;
    *count = 0;
    if (!usable(image, conncomp, kernel))
        return 0;
    if (!labelInto(conncomp->set, *image, threshold, *conncomp, *kernel)) {
        printf("rk_conncomp_process(...) - Unable to label image.\n");
        return 0;
    }
    if (!rk_label_set_resolve(&conncomp->set, vertices, count)) {
        printf("rk_conncomp_process(...) - Unable to resolve graph.\n");
        return 0;
    }
    return 1;
}

int rk_label_image(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel)
{
    if (!usable(image, conncomp, kernel) || !conncomp->graph)
        return 0;
    rk_clear_graph(conncomp->graph);
    return labelPixels(*image, threshold, *conncomp, *kernel, GraphKeeper{conncomp->graph});
}
