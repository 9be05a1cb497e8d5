#pragma once

#include "image/rk_vertex.h"

#include <cstdint>

/// The pixels of one provisional label: its outermost columns and rows.
struct rk_extent {
    uint32_t left;
    uint32_t top;
    uint32_t right;  ///< of the last pixel itself
    uint32_t bottom; ///< of the last pixel itself
};

/// The provisional labels of a frame, and which of them are one blob, as a forest (union-find; Tarjan 1975): 20 bytes a label in
/// place of a row of a dense matrix. An empty record has all fields 0.
struct rk_label_set {
    rk_extent* extents; ///< capacity entries. Owned.
    uint32_t* parents;  ///< an equivalent label of lower index, or the label itself when it is the lowest of its blob. Owned.
    uint32_t count;
    uint32_t capacity;
};

/// Labels are 16 bits wide and -1 is taken: a frame with more fails.
enum : uint32_t { rk_label_set_max = 32767 };

/// Frees the arrays and clears the record.
void rk_label_set_free(rk_label_set* set);

/// A new label for the pixel (x, y); -1 when there are too many or memory is short.
int32_t rk_label_set_open(rk_label_set* set, uint32_t x, uint32_t y);

/// Says that two labels are one blob.
void rk_label_set_join(rk_label_set* set, uint32_t a, uint32_t b);

/// Joins the extents of equivalent labels and hands them out as a list of new nodes with motion_score 1, in the order of their
/// lowest labels. vertices receives its head and count its length. 0, with a partial list, without memory.
int rk_label_set_resolve(rk_label_set* set, rk_vertex** vertices, uint32_t* count);

/// Takes the pixels from left to right of row y, none of which lies above an earlier one, into a label.
inline void rk_label_set_grow(rk_label_set* set, uint32_t label, uint32_t left, uint32_t right, uint32_t y)
{
    rk_extent& extent = set->extents[label];
    extent.left = left < extent.left ? left : extent.left;
    extent.right = right > extent.right ? right : extent.right;
    extent.bottom = y;
}
