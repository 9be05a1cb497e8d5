#include "detection/rk_object.h"
#include "detection/rk_tracker_frame.h"
#include "image/rk_image.h"
#include "math/rk_geometry.h"
#include "math/rk_truncate.h"

#include <algorithm>

static constexpr uint32_t MARGIN = 7;                // pixels around edges and segments in which a box may be cut off
static constexpr float MOTION_WEIGHT = 0.4f;         // moving list: position and size change
static constexpr float PLACE_WEIGHT = 0.005f;        // static list: position and size
static constexpr float LOOKS_WEIGHT = 0.025f;        // long-term size, and colours
static constexpr float DOUBTFUL_SIZE_WEIGHT = 0.01f; // long-term size while the box may cover several objects
static constexpr uint32_t LEAST_SIZE = 3;            // pixels, below which no prediction shrinks a box

static constexpr unsigned char NEAR_BITS = RK_OBJECT_NEAR_EDGE | RK_OBJECT_NEAR_SEGMENT;

/// What both kinds of birth have in common. motion_weight: of dx to dh.
static int be_born(rk_object* object, rk_tracker_frame const* frame, rk_bbox const* bbox, rk_histogram const* histograms,
    float motion_score, uint32_t id, float motion_weight)
{
    if (!object || !frame || !bbox || !histograms)
        return 0;
    rk_bbox const box = *bbox;
    *object = rk_object{};
    object->id = id;
    object->created = frame->now;
    object->motion_score = motion_score;
    object->flags = RK_OBJECT_NASCENT;
    for (rk_running_avg* average : {&object->dx, &object->dy, &object->dw, &object->dh})
        rk_running_avg_set_weight(average, motion_weight);
    for (rk_running_avg* average : {&object->average_width, &object->average_height})
        rk_running_avg_set_weight(average, LOOKS_WEIGHT);
    std::copy_n(histograms, RK_BOX_HISTOGRAMS, object->histograms);
    object->bbox = object->estimate = object->first_bbox = box;
    return 1;
}

static void add_size(rk_object* object, rk_bbox const& box)
{
    rk_running_avg_add(&object->average_width, static_cast<float>(box.width));
    rk_running_avg_add(&object->average_height, static_cast<float>(box.height));
}

static void add_place(rk_object* object, rk_bbox const& box)
{
    rk_running_avg_add(&object->dx, static_cast<float>(box.x));
    rk_running_avg_add(&object->dy, static_cast<float>(box.y));
    rk_running_avg_add(&object->dw, static_cast<float>(box.width));
    rk_running_avg_add(&object->dh, static_cast<float>(box.height));
}

int rk_object_init(rk_object* object, rk_tracker_frame const* frame, rk_bbox const* bbox, rk_histogram const* histograms,
    float motion_score, uint32_t id)
{
    if (!be_born(object, frame, bbox, histograms, motion_score, id, MOTION_WEIGHT))
        return 0;
    rk_object_set_near_bits(object, frame);
    if (!(object->flags & NEAR_BITS))
        add_size(object, object->bbox);
    return 1;
}

int rk_object_static_init(rk_object* object, rk_tracker_frame const* frame, rk_bbox const* bbox, rk_histogram const* histograms,
    float motion_score, uint32_t id)
{
    if (!be_born(object, frame, bbox, histograms, motion_score, id, PLACE_WEIGHT))
        return 0;
    add_size(object, object->bbox);
    add_place(object, object->bbox);
    return 1;
}

int rk_object_set_near_bits(rk_object* object, rk_tracker_frame const* frame)
{
    if (!object || !frame)
        return 0;
    object->flags &= static_cast<unsigned char>(~NEAR_BITS);
    if (rk_object_near_edge(&object->estimate, frame->image))
        object->flags |= RK_OBJECT_NEAR_EDGE;
    if (rk_object_near_segment(&object->estimate, frame->segments, frame->segment_count))
        object->flags |= RK_OBJECT_NEAR_SEGMENT;
    return 1;
}

static float change(uint32_t before, uint32_t after)
{
    return static_cast<float>(static_cast<int32_t>(after - before));
}

static void add_motion(rk_object* object, rk_bbox const& box)
{
    rk_running_avg_add(&object->dx, change(object->bbox.x, box.x));
    rk_running_avg_add(&object->dy, change(object->bbox.y, box.y));
    rk_running_avg_add(&object->dw, change(object->bbox.width, box.width));
    rk_running_avg_add(&object->dh, change(object->bbox.height, box.height));
}

static void set_size_weight(rk_object* object, float weight)
{
    rk_running_avg_set_weight(&object->average_width, weight);
    rk_running_avg_set_weight(&object->average_height, weight);
}

static void blend_histograms(rk_object* object)
{
    for (unsigned int i = 0; i < RK_BOX_HISTOGRAMS; ++i)
        rk_histogram_avg(&object->histograms[i], &object->candidate->histograms[i], LOOKS_WEIGHT);
}

/// The box of this frame is that of one object alone, as was the box before.
static bool is_alone(rk_object const* object)
{
    return !object->merged && object->candidate->link_count == 1;
}

static bool has_region(rk_object const* object)
{
    return object && object->candidate && object->candidate->vertex;
}

/// The end of both kinds of update.
static void take_candidate(rk_object* object, rk_tracker_frame const* frame)
{
    object->bbox = rk_candidate_box(*object->candidate);
    object->merged = object->candidate->link_count > 1;
    object->motion_score = object->candidate->motion_score;
    object->candidate = nullptr;
    ++object->age;
    if (object->age >= frame->min_track_length)
        object->flags &= static_cast<unsigned char>(~RK_OBJECT_NASCENT);
}

int rk_object_update(rk_object* object, rk_tracker_frame const* frame)
{
    if (!frame || !has_region(object))
        return 0;
    rk_bbox const box = rk_candidate_box(*object->candidate);
    bool const learns = !(object->flags & NEAR_BITS) || frame->always_update_histograms;
    if (is_alone(object)) {
        add_motion(object, box);
        set_size_weight(object, LOOKS_WEIGHT);
        if (learns)
            blend_histograms(object);
    } else {
        set_size_weight(object, DOUBTFUL_SIZE_WEIGHT);
    }
    if (learns)
        add_size(object, box);
    take_candidate(object, frame);
    return 1;
}

int rk_object_static_update(rk_object* object, rk_tracker_frame const* frame)
{
    if (!frame || !has_region(object))
        return 0;
    if (is_alone(object)) {
        rk_bbox const box = rk_candidate_box(*object->candidate);
        add_place(object, box);
        add_size(object, box);
        blend_histograms(object);
    }
    take_candidate(object, frame);
    return 1;
}

/// Moves value by a mean change, rounded by adding bias to its size and cutting, by at most limit. A decrease stops at least.
static uint32_t predicted(uint32_t value, float mean_change, float decrease_bias, uint32_t limit, uint32_t least)
{
    if (mean_change < 0.0f) {
        uint32_t const step = std::min(rk_truncate_u32(decrease_bias - mean_change), limit);
        return value > step ? std::max(value - step, least) : least;
    }
    return value + std::min(rk_truncate_u32(mean_change + 0.5f), limit);
}

int rk_object_estimate(rk_object const* object, rk_bbox* bbox)
{
    if (!object || !bbox)
        return 0;
    rk_bbox const& last = object->bbox;
    uint32_t const half_width = last.width >> 1;
    uint32_t const half_height = last.height >> 1;
    // A move to the left is rounded down rather than to the nearest pixel; this is meant.
    bbox->x = predicted(last.x, object->dx.value, 0.05f, half_width, 0);
    bbox->y = predicted(last.y, object->dy.value, 0.5f, half_height, 0);
    bbox->width = predicted(last.width, object->dw.value, 0.5f, half_width, LEAST_SIZE);
    bbox->height = predicted(last.height, object->dh.value, 0.5f, half_height, LEAST_SIZE);
    return 1;
}

int rk_object_static_estimate(rk_object const* object, rk_bbox* bbox)
{
    if (!object || !bbox)
        return 0;
    bbox->x = rk_truncate_u32(0.5f + object->dx.value);
    bbox->y = rk_truncate_u32(0.5f + object->dy.value);
    bbox->width = rk_truncate_u32(0.5f + object->dw.value);
    bbox->height = rk_truncate_u32(0.5f + object->dh.value);
    return 1;
}

int rk_object_near_edge(rk_bbox const* bbox, rk_image const* image)
{
    if (!bbox || !image)
        return -1;
    return bbox->x < MARGIN || bbox->y < MARGIN || uint64_t(bbox->x) + bbox->width + MARGIN >= image->width ||
        uint64_t(bbox->y) + bbox->height + MARGIN >= image->height;
}

int rk_object_near_segment(rk_bbox const* bbox, rk_segment const* segments, uint32_t segment_count)
{
    if (!bbox || !segments)
        return 0;
    rk_bbox inflated = *bbox;
    rk_bbox_inflate(&inflated, MARGIN, MARGIN, MARGIN, MARGIN);
    return std::any_of(
        segments, segments + segment_count, [&](rk_segment const& segment) { return rk_bbox_intersects(&inflated, &segment); });
}

int rk_object_nascent(rk_object const* object)
{
    return object && object->flags & RK_OBJECT_NASCENT;
}

int rk_object_near_death(rk_object const* object, uint32_t now, uint32_t limit)
{
    if (!object)
        return 0;
    if (rk_object_nascent(object))
        return 1;
    return object->lost_time != 0 && now - object->lost_time > limit;
}
