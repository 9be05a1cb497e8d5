#pragma once

#include "detection/rk_candidate.h"
#include "math/rk_bbox.h"
#include "math/rk_running_avg.h"

#include <cstdint>

struct rk_image;
struct rk_segment;
struct rk_tracker_frame;

/// Bits of rk_object::flags.
inline constexpr unsigned char RK_OBJECT_NASCENT = 1;
inline constexpr unsigned char RK_OBJECT_NEAR_EDGE = 2;
inline constexpr unsigned char RK_OBJECT_NEAR_SEGMENT = 4;

/// One track: a box followed from frame to frame, how it moves, how large it is and what it looks like. Belongs to an
/// rk_object_list.
struct rk_object {
    uint32_t id;             // unique in its list, from 1
    rk_candidate* candidate; // linked in the current frame, not owned; null between frames
    rk_bbox bbox;            // as last measured
    rk_bbox estimate;        // where it is expected in the current frame
    rk_bbox first_bbox;      // at birth
    unsigned char merged;    // not 0: it shared its last candidate with other objects
    unsigned char flags;     // RK_OBJECT_...
    float motion_score;      // of the last candidate
    float confidence;        // score of the last match, and its parts:
    float histogram_score;
    float width_score;
    float height_score;
    rk_running_avg dx; // moving list: mean change a frame of x, y, width, height; static list: mean x, y, width, height
    rk_running_avg dy;
    rk_running_avg dw;
    rk_running_avg dh;
    rk_running_avg average_width; // long-term size
    rk_running_avg average_height;
    rk_histogram histograms[RK_BOX_HISTOGRAMS];
    rk_object* next;    // in the chain of the list
    uint32_t lost_time; // ms, time of the first frame without a match; 0 while matched
    uint32_t created;   // ms, time of birth
    uint32_t age;       // frames with a match
};

/// Functions give 0 and change nothing for a null argument, if they do not say otherwise.

/// Birth in a moving list. Overwrites the whole record; it is nascent, and its motion is 0. Only a box away from edges and
/// segments, thus fully seen, gives a first sample of the average size. histograms: RK_BOX_HISTOGRAMS of them, copied.
/// 1, or 0 for a null argument. A frame without image counts as near an edge.
int rk_object_init(rk_object* object, rk_tracker_frame const* frame, rk_bbox const* bbox, rk_histogram const* histograms,
    float motion_score, uint32_t id);

/// Birth in a static list: the box is the first sample of all averages.
int rk_object_static_init(rk_object* object, rk_tracker_frame const* frame, rk_bbox const* bbox, rk_histogram const* histograms,
    float motion_score, uint32_t id);

/// Sets the near bits of flags from the estimate, by the two tests below. A frame without image counts as near an edge.
int rk_object_set_near_bits(rk_object* object, rk_tracker_frame const* frame);

/// Takes the linked candidate in and unlinks it. 0 and no change without one.
/// An object that shares its candidate, or did in the last match, does not learn motion and colour and hardly learns size.
int rk_object_update(rk_object* object, rk_tracker_frame const* frame);
int rk_object_static_update(rk_object* object, rk_tracker_frame const* frame);

/// bbox: where the object is expected next. In a moving list the last box plus the mean change, by at most half the size in
/// each direction, never above or left of 0, never shrinking below 3; in a static list the mean box. bbox may be
/// &object->estimate.
int rk_object_estimate(rk_object const* object, rk_bbox* bbox);
int rk_object_static_estimate(rk_object const* object, rk_bbox* bbox);

/// 1 when a side of the box comes within 7 pixels of the frame's edge; -1 for a null argument.
int rk_object_near_edge(rk_bbox const* bbox, rk_image const* image);

/// 1 when the box, 7 pixels larger on each side, crosses one of the segments; 0 for none.
int rk_object_near_segment(rk_bbox const* bbox, rk_segment const* segments, uint32_t segment_count);

/// 1 for an object with too few matched frames to be trusted.
int rk_object_nascent(rk_object const* object);

/// 1 for an object that may go: nascent, or lost for more than limit ms.
int rk_object_near_death(rk_object const* object, uint32_t now, uint32_t limit);
