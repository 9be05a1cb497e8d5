#pragma once

#include <cstdint>

struct rk_image;
struct rk_segment;
struct rk_vertex;

/// What the tracker is given for one step of one list. All pointers are the caller's and are only read; nothing is kept
/// beyond the call.
struct rk_tracker_frame {
    rk_image* image;                        // the frame; colours are learned from four channels only
    rk_image* mask;                         // null, or one channel of the size of image: only pixels set here give colours
    rk_vertex* vertices;                    // chain of the regions of this frame; they lie inside image
    uint32_t vertex_count;                  // their number
    float min_score;                        // least motion_score of a region that may start an object
    uint32_t now;                           // ms, time of the frame; wraps around
    uint32_t defer_time;                    // ms that a lost object waits at its last place
    rk_segment const* segments;             // null, or the lines behind which objects disappear, in pixels
    uint32_t segment_count;                 // their number
    unsigned char min_track_length;         // matched frames until an object stops being nascent
    unsigned char always_update_histograms; // not 0: objects near an edge or a segment learn, too
    unsigned char max_track_merges;         // how many objects may share a region
};
