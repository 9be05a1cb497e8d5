#pragma once

#include "detection/rk_graph.h"
#include "detection/rk_kernel.h"
#include "detection/rk_label_set.h"
#include "image/rk_image.h"
#include "image/rk_vertex.h"

#include <cstdint>

/// Connected components: a foreground image becomes a list of boxes, one per blob. A pixel is joined to any labelled pixel
/// inside the upper half of a structuring kernel, not only to touching ones, so that blobs with a gap narrower than the
/// kernel come out as one. One pass labels, growing a box per provisional label; equivalent labels merge their boxes at the
/// end (Rosenfeld and Pfaltz 1966, with union-find).
struct rk_conncomp {
    rk_graph* graph;      ///< of rk_label_image
    int16_t* labels;      ///< working label image with a margin, so that a window needs no tests of bounds; -1 means no label
    uint32_t label_count; ///< entries of labels

    // What rk_conncomp_process keeps between frames in place of the graph and, in its fast form, of the label image.
    rk_label_set set;
    void* room; ///< for the rows that a kernel's window can reach
    uint64_t room_size;
};

/// A graph with room for capacity vertices and no label image. 0, with a message, for a missing record or a failed
/// allocation.
int rk_conncomp_init(uint32_t capacity, rk_conncomp* conncomp);

/// Frees everything and clears the record.
void rk_conncomp_deinit(rk_conncomp* conncomp);

/// image: one channel. threshold: lowest pixel value that counts as foreground. vertices receives the head of a list of
/// separately allocated nodes in the order of their first label, that is, by the raster position of that label's first
/// pixel; count its length. The caller owns the list, after a failure too, and frees it with rk_free_vertices.
/// 0 for a missing argument, an empty image, one of more than one channel, too many labels, or a failed allocation.
/// Allocates nothing but the list's nodes once the image size and the number of labels have been seen.
int rk_conncomp_process(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel,
    rk_vertex** vertices, uint32_t* count);

/// The first step by its plain definition: labels the image and builds conncomp's graph with a dense matrix of
/// equivalences. rk_conncomp_process gives what this and rk_resolve_graph give. 0 as above.
int rk_label_image(rk_image const* image, uint32_t threshold, rk_conncomp* conncomp, rk_kernel const* kernel);
