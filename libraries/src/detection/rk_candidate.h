#pragma once

#include "image/rk_histogram.h"
#include "math/rk_bbox.h"

#include <cstdint>

struct rk_object;
struct rk_vertex;

/// Histograms that describe a box: top half, bottom half, right half, left half, whole box, in this order.
inline constexpr unsigned int RK_BOX_HISTOGRAMS = 5;

/// A region of the frame, made ready to be matched with objects.
struct rk_candidate {
    rk_vertex* vertex; // the region, not owned
    rk_histogram histograms[RK_BOX_HISTOGRAMS];
    float motion_score;       // of the region
    unsigned char link_count; // objects linked to this candidate in this frame
};

/// Box of the candidate's region, which must be there.
rk_bbox rk_candidate_box(rk_candidate const& candidate);

/// A pair of an object and a candidate that overlap, with its score.
struct rk_match {
    float confidence; // the sort key
    float histogram_score;
    float width_score;
    float height_score;
    rk_candidate* candidate;
    rk_object* object;
};

/// Matches are sorted by the plain in-place heap sort (Williams and Floyd, 1964). Which of two equal entries comes first
/// follows from the order in which they came and is part of the result: the sort is not to be exchanged.

/// Sorts ascending by confidence.
void rk_candidate_heapsort(rk_match* matches, uint32_t count);

/// Makes a heap with the largest confidence first.
void rk_candidate_heapify(rk_match* matches, uint32_t count);

/// Moves the entry at root down in the heap of the first count entries until no child is larger. The right child is taken
/// only if the left is strictly below it, and the parent moves only if it is strictly below the child.
void rk_candidate_siftdown(rk_match* matches, uint32_t root, uint32_t count);
