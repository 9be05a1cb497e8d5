#include "detection/rk_conncomp.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

// The walk over the pixels is written once, for two keepers of labels: the graph with its dense matrix (the definition) and
// union-find (what runs). A keeper opens a label for a box, joins two labels, and gives access to a label's box.

namespace {

struct GraphKeeper {
    static constexpr bool isFast = false;

    rk_graph* graph;

    int open(rk_vertex const& box) { return rk_add_vertex(graph, &box); }
    void join(uint32_t a, uint32_t b)
    {
        graph->edges[size_t(a) * graph->capacity + b] = 1;
        graph->edges[size_t(b) * graph->capacity + a] = 1;
    }
    rk_vertex* box(uint32_t label) { return graph->vertices + label; }
    uint32_t count() const { return graph->count; }
};

struct UnionKeeper {
    static constexpr bool isFast = true;

    rk_conncomp* conncomp;
    uint32_t labels = 0;

    int open(rk_vertex const& box)
    {
        if (labels == conncomp->box_capacity && !enlarge())
            return -1;
        conncomp->boxes[labels] = box;
        conncomp->parents[labels] = labels;
        return static_cast<int>(labels++);
    }

    /// The lowest label of the set; paths are halved on the way.
    uint32_t find(uint32_t label)
    {
        uint32_t* const parents = conncomp->parents;
        while (parents[label] != label) {
            parents[label] = parents[parents[label]];
            label = parents[label];
        }
        return label;
    }

    void join(uint32_t a, uint32_t b)
    {
        a = find(a);
        b = find(b);
        if (a < b)
            conncomp->parents[b] = a;
        else
            conncomp->parents[a] = b;
    }

    rk_vertex* box(uint32_t label) { return conncomp->boxes + label; }
    uint32_t count() const { return labels; }

private:
    bool enlarge()
    {
        uint32_t const capacity = conncomp->box_capacity ? conncomp->box_capacity * 2 : 64;
        void* const boxes = realloc(static_cast<void*>(conncomp->boxes), capacity * sizeof(rk_vertex));
        if (!boxes)
            return reportFailure();
        conncomp->boxes = static_cast<rk_vertex*>(boxes);
        void* const parents = realloc(conncomp->parents, capacity * sizeof(uint32_t));
        if (!parents)
            return reportFailure();
        conncomp->parents = static_cast<uint32_t*>(parents);
        conncomp->box_capacity = capacity;
        return true;
    }

    static bool reportFailure()
    {
        printf("rk_add_vertex(...) - Unable to allocate memory for new vertices.\n");
        return false;
    }
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

/// Which cells of the kernel's shape hold pixels visited before, as distances from the pixel's own cell in labels.
struct Window {
    int32_t const* offsets; // in walking order
    int count;
    int32_t const* entering; // those that the window of the pixel to the left did not hold, nor are that pixel itself
    int enteringCount;
    bool hasLeft; // the pixel to the left is in the window
};

bool prepareWindow(rk_conncomp& conncomp, rk_kernel const& kernel, uint32_t stride, Window& window)
{
    uint32_t const most = kernel.half_height * kernel.width + kernel.half_width;
    if (conncomp.offset_capacity < 2 * most) {
        free(conncomp.offsets);
        conncomp.offsets = static_cast<int32_t*>(malloc(2 * most * sizeof(int32_t)));
        conncomp.offset_capacity = conncomp.offsets ? 2 * most : 0;
        if (!conncomp.offsets)
            return false;
    }
    auto const isInside = [&](uint32_t cell) { return kernel.mask[cell] != rk_kernel_outside; };
    int32_t* const entering = conncomp.offsets + most;
    window = {conncomp.offsets, 0, entering, 0, kernel.half_width > 0 && isInside(most - 1)};
    for (uint32_t cell = 0; cell < most; ++cell) {
        if (!isInside(cell))
            continue;
        int32_t const row = static_cast<int32_t>(cell / kernel.width) - static_cast<int32_t>(kernel.half_height);
        int32_t const column = static_cast<int32_t>(cell % kernel.width) - static_cast<int32_t>(kernel.half_width);
        int32_t const offset = row * static_cast<int32_t>(stride) + column;
        conncomp.offsets[window.count++] = offset;
        bool const atRightEnd = cell % kernel.width + 1 == kernel.width;
        if (cell + 1 < most && (atRightEnd || !isInside(cell + 1)))
            entering[window.enteringCount++] = offset;
    }
    return true;
}

/// The label for the foreground pixel whose cell this is, or -1 if its window has none. A window with two labels records
/// their equivalence and the later one wins; at most one equivalence is recorded for a pixel. single: there were not two.
template <class Keeper> int16_t labelFromWindow(int16_t const* cell, Window const& window, Keeper& keeper, bool& single)
{
    single = true;
    int16_t current = -1;
    for (int i = 0; i < window.count; ++i) {
        int16_t const label = cell[window.offsets[i]];
        if (label < 0 || label == current)
            continue;
        if (current >= 0) {
            keeper.join(static_cast<uint32_t>(current), static_cast<uint32_t>(label));
            single = false;
            return label;
        }
        current = label;
    }
    return current;
}

/// Whether the window that held no label but this one still holds no other after its step to the right.
bool staysSingle(int16_t const* cell, Window const& window, int16_t label)
{
    for (int i = 0; i < window.enteringCount; ++i) {
        int16_t const other = cell[window.entering[i]];
        if (other >= 0 && other != label)
            return false;
    }
    return true;
}

/// The first pixel from x on that may be foreground: leaps over eight black ones at a time.
uint32_t skipBlack(unsigned char const* pixels, uint32_t x, uint32_t width)
{
    for (uint64_t eight; x + 8 <= width; x += 8) {
        memcpy(&eight, pixels + x, 8);
        if (eight != 0)
            break;
    }
    return x;
}

/// The label of a foreground pixel, a new one when its window is empty, or -1 when there are too many.
template <class Keeper>
int16_t labelOf(int16_t const* cell, uint32_t x, uint32_t y, Window const& window, Keeper& keeper, bool& single)
{
    int16_t const label = labelFromWindow(cell, window, keeper, single);
    if (label >= 0)
        return label;
    bool const isRoom = keeper.count() < rk_conncomp_labels_max;
    return isRoom ? static_cast<int16_t>(keeper.open({x, y, 0, 0, 0.0f, nullptr})) : int16_t(-1);
}

/// One row of pixels. Along a run of foreground most windows hold one label only, that of the pixel to the left: there it is
/// enough to look at what enters the window, unless the keeper is the plain definition.
template <class Keeper>
bool labelRow(unsigned char const* pixels, int16_t* cells, uint32_t y, uint32_t width, uint32_t threshold, Window const& window,
    Keeper& keeper)
{
    int16_t settled = -1; // the left pixel's label, when its window held no other
    for (uint32_t x = 0; x < width;) {
        if (pixels[x] < threshold) {
            settled = -1;
            ++x;
            if (Keeper::isFast && threshold > 0)
                x = skipBlack(pixels, x, width);
            continue;
        }
        int16_t label = settled;
        if (settled < 0 || !staysSingle(cells + x, window, settled)) {
            bool single;
            label = labelOf(cells + x, x, y, window, keeper, single);
            if (label < 0)
                return false;
            settled = Keeper::isFast && single && window.hasLeft ? label : int16_t(-1);
        }
        cells[x] = label;
        rk_vertex_grow(keeper.box(static_cast<uint32_t>(label)), x, y);
        ++x;
    }
    return true;
}

template <class Keeper>
bool labelPixels(rk_image const& image, uint32_t threshold, rk_conncomp& conncomp, rk_kernel const& kernel, Keeper& keeper)
{
    uint32_t const stride = image.width + kernel.width - 1;
    Window window;
    if (!prepareWindow(conncomp, kernel, stride, window))
        return false;
    for (uint32_t y = 0; y < image.height; ++y) {
        unsigned char const* const pixels = image.data + size_t(y) * image.width;
        int16_t* const cells = conncomp.labels + size_t(y + kernel.half_height) * stride + kernel.half_width;
        if (!labelRow(pixels, cells, y, image.width, threshold, window, keeper))
            return false;
    }
    return true;
}

template <class Keeper>
bool labelImage(
    rk_image const& image, uint32_t threshold, rk_conncomp& conncomp, rk_kernel const& kernel, Keeper keeper, uint32_t& labels)
{
    if (!prepareLabels(image, conncomp, kernel)) {
        printf("rk_label_image(...) - Unable to allocate memory for g_pLabelImg.\n");
        return false;
    }
    bool const done = labelPixels(image, threshold, conncomp, kernel, keeper);
    labels = keeper.count();
    return done;
}

bool usable(rk_image const* image, rk_conncomp const* conncomp, rk_kernel const* kernel)
{
    return conncomp && kernel && kernel->mask && rk_image_valid(image) && image->channels == 1;
}

/// Merges the boxes of equivalent labels and hands them out as a list, in the order of their lowest labels.
bool resolveUnions(rk_conncomp& conncomp, uint32_t labels, rk_vertex** vertices, uint32_t* count)
{
    UnionKeeper keeper{&conncomp, labels};
    for (uint32_t label = 0; label < labels; ++label) {
        uint32_t const lowest = keeper.find(label);
        if (lowest != label)
            rk_vertex_join(conncomp.boxes + lowest, conncomp.boxes + label);
    }
    rk_vertex** link = vertices;
    for (uint32_t label = 0; label < labels; ++label) {
        if (conncomp.parents[label] != label)
            continue;
        rk_vertex* const blob = new (std::nothrow) rk_vertex;
        if (!blob) {
            printf("rk_resolve_graph(...) - Unable to allocate memory for new vertex.\n");
            return false;
        }
        *blob = conncomp.boxes[label];
        blob->motion_score = 1.0f;
        blob->next = nullptr;
        *link = blob;
        link = &blob->next;
        ++*count;
    }
    return true;
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
    free(static_cast<void*>(conncomp->boxes));
    free(conncomp->parents);
    free(conncomp->offsets);
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
    uint32_t labels = 0;
    if (!labelImage(*image, threshold, *conncomp, *kernel, UnionKeeper{conncomp}, labels)) {
        printf("rk_conncomp_process(...) - Unable to label image.\n");
        return 0;
    }
    if (!resolveUnions(*conncomp, labels, vertices, count)) {
        printf("rk_conncomp_process(...) - Unable to resolve graph.\n");
        return 0;
    }
    return 1;
}

int rk_label_image(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel)
{
    if (!usable(image, conncomp, kernel) || !conncomp->graph)
        return 0;
    uint32_t labels = 0;
    rk_clear_graph(conncomp->graph);
    return labelImage(*image, threshold, *conncomp, *kernel, GraphKeeper{conncomp->graph}, labels);
}
