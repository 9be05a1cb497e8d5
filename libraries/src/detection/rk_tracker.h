#pragma once

#include "detection/rk_candidate.h"
#include "detection/rk_object.h"
#include "detection/rk_object_list.h"
#include "detection/rk_tracker_frame.h"

#include <cstdint>

struct rk_bbox;

/// The matching step: once a frame and list, regions become candidates, each overlapping pair of object and candidate is
/// scored, pairs are linked greedily by score, objects take in what they are linked to, and new objects start on what is left.
///
/// The tracker keeps nothing. The caller owns the frame record and all that it points to (image, mask, regions, segments),
/// which are only read; the caller owns the list, in which all state lives between frames. Each step starts afresh with the
/// candidates, the matches and the links; rk_object::candidate is null before and after it. Pointers to rk_candidate and
/// rk_match are good until the next step, pointers to an rk_object until the step after the one that removed it, or until a
/// birth takes its memory.
/// Nothing is allocated unless the number of objects or candidates outgrows the buffers or an object is born.
///
/// Without memory for the buffers a step does rk_object_list_update alone and gives 0, like any step that lacks its input.

/// One step of a moving list: several objects may share a candidate, up to max_track_merges of the frame.
/// 1; or 0, after rk_object_list_update alone, for a null argument, a frame without regions or image, or a static list.
int rk_tracker_process(rk_tracker_frame const* frame, rk_object_list* list);

/// One step of a static list: no sharing, each object takes its best free candidate, the oldest object first.
/// 1; or 0, after rk_object_list_update alone, for a null argument, a frame without regions or image, or a moving list.
int rk_tracker_static_process(rk_tracker_frame const* frame, rk_object_list* list);

/// Fills matches, which has room for candidate_count, with the scored pairs of object and those candidates that overlap its
/// estimate. Returns their number; 0 for a null argument.
uint32_t rk_track_candidates(rk_object* object, rk_candidate* candidates, uint32_t candidate_count, rk_match* matches);

/// Turns the overlap (intersection over union) in confidence into the score, which blends overlap, size and colour; near
/// an edge or a segment, where a box is cut off, colour alone counts. Stores the three parts. 0 for an incomplete match.
int rk_track_weigh_confidences(rk_match* match);

/// Links the object of a match to its candidate and copies the four scores. link_count is for the caller to set.
/// 0 for an incomplete match.
int rk_link_candidates(rk_match const* match);

/// Fills the RK_BOX_HISTOGRAMS histograms of a box. For an odd height or width the last row or column belongs to no half.
/// All are empty for an image without colour and for a box that reaches out of the image or the mask. 0 for a null argument.
int rk_tracker_populate_histograms(rk_histogram* histograms, rk_tracker_frame const* frame, rk_bbox const* box);

/// Starts an object on each of the vertex_count candidates that nobody took and that moves enough. 0 for a null argument.
int rk_add_new_objects(rk_object_list* list, rk_candidate const* candidates, rk_tracker_frame const* frame);
