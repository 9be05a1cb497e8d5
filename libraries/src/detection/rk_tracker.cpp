#include "detection/rk_tracker.h"
#include "image/rk_vertex.h"

#include <algorithm>
#include <cmath>

// Colour similarity below which a pair does not belong together, in general and where the box is cut off.
static constexpr float LEAST_SIMILARITY = 0.2f;
static constexpr float LEAST_SIMILARITY_NEAR = 0.4f;

/// One candidate for each region. A chain shorter than vertex_count leaves candidates without region, which match nothing.
static void make_candidates(rk_tracker_frame const* frame, rk_candidate* candidates)
{
    rk_vertex* vertex = frame->vertices;
    for (uint32_t i = 0; i < frame->vertex_count; ++i) {
        rk_candidate& candidate = candidates[i];
        candidate.link_count = 0;
        candidate.vertex = vertex;
        if (!vertex)
            continue;
        candidate.motion_score = vertex->motion_score;
        rk_bbox const box = rk_candidate_box(candidate);
        rk_tracker_populate_histograms(candidate.histograms, frame, &box);
        vertex = vertex->next;
    }
}

/// What both kinds of step begin with: room, then candidates.
static int begin_step(rk_tracker_frame const* frame, rk_object_list* list)
{
    if (!frame->vertices || !frame->image || !rk_object_list_resize_buffers(list, frame->vertex_count))
        return 0;
    make_candidates(frame, list->candidates);
    return 1;
}

/// Scored pairs of one object, appended to the count matches of the list.
static uint32_t append_matches(rk_tracker_frame const* frame, rk_object_list* list, rk_object* object, uint32_t count)
{
    rk_object_set_near_bits(object, frame);
    return rk_track_candidates(object, list->candidates, frame->vertex_count, list->matches + count);
}

static int end_step(rk_tracker_frame const* frame, rk_object_list* list)
{
    rk_object_list_update(frame, list);
    return rk_add_new_objects(list, list->candidates, frame);
}

/// Each object and each candidate find their best partner; a confidence of 0 is enough.
static void link_free(rk_match const* matches, uint32_t count)
{
    for (uint32_t i = count; i-- > 0;) {
        rk_match const& match = matches[i];
        if (match.candidate->link_count == 0 && !match.object->candidate) {
            rk_link_candidates(&match);
            match.candidate->link_count = 1;
        }
    }
}

/// Objects that are left over share the best candidate that overlaps and resembles them: they walk in front of one another.
static void link_merged(rk_match const* matches, uint32_t count, unsigned char max_merges)
{
    for (uint32_t i = count; i-- > 0;) {
        rk_match const& match = matches[i];
        if (!match.object->candidate && match.candidate->link_count < max_merges && !rk_object_nascent(match.object) &&
            match.confidence > 0.0f) {
            rk_link_candidates(&match);
            ++match.candidate->link_count;
        }
    }
}

/// A nascent object that shares its candidate with an older one is taken for a part of that one, and gives way.
static void unlink_nascent(rk_match const* matches, uint32_t count)
{
    for (uint32_t i = count; i-- > 0;) {
        rk_match const& match = matches[i];
        if (match.candidate->link_count > 1 && match.object->candidate == match.candidate && rk_object_nascent(match.object)) {
            match.object->candidate = nullptr;
            --match.candidate->link_count;
        }
    }
}

int rk_tracker_process(rk_tracker_frame const* frame, rk_object_list* list)
{
    if (!frame || !list || list->is_static || !begin_step(frame, list)) {
        rk_object_list_update(frame, list);
        return 0;
    }
    uint32_t count = 0;
    for (rk_object* object = list->objects; object; object = object->next) {
        rk_object_estimate(object, &object->estimate);
        count += append_matches(frame, list, object, count);
    }
    rk_candidate_heapsort(list->matches, count);
    link_free(list->matches, count);
    link_merged(list->matches, count, frame->max_track_merges);
    unlink_nascent(list->matches, count);
    return end_step(frame, list);
}

int rk_tracker_static_process(rk_tracker_frame const* frame, rk_object_list* list)
{
    if (!frame || !list || !list->is_static || !begin_step(frame, list)) {
        rk_object_list_update(frame, list);
        return 0;
    }
    uint32_t count = 0;
    for (rk_object* object = list->objects; object; object = object->next) {
        rk_object_static_estimate(object, &object->estimate);
        uint32_t const own = append_matches(frame, list, object, count);
        rk_candidate_heapsort(list->matches + count, own);
        count += own;
    }
    // The blocks of the objects stand one behind the other, so that the last object, the oldest, chooses first.
    link_free(list->matches, count);
    return end_step(frame, list);
}

uint32_t rk_track_candidates(rk_object* object, rk_candidate* candidates, uint32_t candidate_count, rk_match* matches)
{
    if (!object || !candidates || !matches)
        return 0;
    uint32_t count = 0;
    uint32_t const object_area = rk_bbox_area(&object->estimate);
    for (uint32_t i = 0; i < candidate_count; ++i) {
        if (!candidates[i].vertex)
            continue;
        rk_bbox const box = rk_candidate_box(candidates[i]);
        uint32_t const shared = rk_bbox_overlap(&box, &object->estimate);
        if (shared == 0)
            continue;
        rk_match& match = matches[count++];
        match = rk_match{};
        match.confidence = static_cast<float>(shared) / static_cast<float>(rk_bbox_area(&box) + object_area - shared);
        match.candidate = &candidates[i];
        match.object = object;
        rk_track_weigh_confidences(&match);
    }
    return count;
}

/// 1 for equal sizes, falling to 0. Sizes are not negative; two of 0 are equal.
static float size_score(float average, uint32_t size)
{
    float const measured = static_cast<float>(size);
    float const sum = average + measured;
    return sum > 0.0f ? 1.0f - std::fabs(average - measured) / sum : 1.0f;
}

/// Mean similarity of the pairs of histograms. comparable: whether at least one pair holds colours on both sides.
static float histogram_score(rk_histogram const* a, rk_histogram const* b, bool& comparable)
{
    float sum = 0.0f;
    comparable = false;
    for (unsigned int i = 0; i < RK_BOX_HISTOGRAMS; ++i) {
        sum += rk_histogram_compare(&a[i], &b[i]);
        comparable = comparable || (a[i].total != 0 && b[i].total != 0);
    }
    return sum / static_cast<float>(RK_BOX_HISTOGRAMS);
}

int rk_track_weigh_confidences(rk_match* match)
{
    if (!match || !match->object || !match->candidate || !match->candidate->vertex)
        return 0;
    rk_object const& object = *match->object;
    rk_candidate const& candidate = *match->candidate;
    bool comparable = false;
    match->width_score = size_score(object.average_width.value, candidate.vertex->width);
    match->height_score = size_score(object.average_height.value, candidate.vertex->height);
    match->histogram_score = histogram_score(object.histograms, candidate.histograms, comparable);
    float const overlap = match->confidence;
    if (object.flags & (RK_OBJECT_NEAR_EDGE | RK_OBJECT_NEAR_SEGMENT))
        match->confidence = match->histogram_score < LEAST_SIMILARITY_NEAR ? 0.0f : match->histogram_score;
    else if (!comparable)
        match->confidence = 0.2f * overlap + 0.4f * match->width_score + 0.4f * match->height_score;
    else if (match->histogram_score < LEAST_SIMILARITY)
        match->confidence = 0.0f;
    else
        match->confidence =
            0.1f * overlap + 0.4f * match->histogram_score + 0.25f * match->width_score + 0.25f * match->height_score;
    return 1;
}

int rk_link_candidates(rk_match const* match)
{
    if (!match || !match->object || !match->candidate)
        return 0;
    rk_object& object = *match->object;
    object.candidate = match->candidate;
    object.confidence = match->confidence;
    object.histogram_score = match->histogram_score;
    object.width_score = match->width_score;
    object.height_score = match->height_score;
    return 1;
}

/// A stretch of one axis of a box: one of its halves, or the pixel that is left over.
struct Stretch {
    uint32_t start; // from the box's left side or top
    uint32_t length;
};

/// Places of the histograms of a box in their array.
enum BoxHistogram { TOP, BOTTOM, RIGHT, LEFT, WHOLE };

/// Adds the part of the box where columns and rows meet to the histograms that cover it. Index 0 is the first half of an axis,
/// 1 the second, 2 the rest. 0 when there are no colours to be had.
static int add_part(rk_histogram* histograms, rk_tracker_frame const* frame, rk_bbox const& box, Stretch const* columns,
    Stretch const* rows, int column, int row)
{
    Stretch const& x = columns[column];
    Stretch const& y = rows[row];
    rk_bbox const place = {box.x + x.start, box.y + y.start, x.length, y.length};
    rk_histogram part;
    if (!rk_histogram_set(&part, frame->image, frame->mask, &place))
        return 0;
    rk_histogram_add_part(&histograms[WHOLE], &part, x.start, y.start);
    if (row < 2)
        rk_histogram_add_part(&histograms[row == 0 ? TOP : BOTTOM], &part, x.start, 0);
    if (column < 2)
        rk_histogram_add_part(&histograms[column == 0 ? LEFT : RIGHT], &part, 0, y.start);
    return 1;
}

static void reset_histograms(rk_histogram* histograms)
{
    for (unsigned int i = 0; i < RK_BOX_HISTOGRAMS; ++i)
        rk_histogram_reset(&histograms[i]);
}

// Each pixel lies in up to three of the boxes. It is looked at once, in the quarter that holds it.
int rk_tracker_populate_histograms(rk_histogram* histograms, rk_tracker_frame const* frame, rk_bbox const* box)
{
    if (!histograms || !frame || !box)
        return 0;
    reset_histograms(histograms);
    uint32_t const half_width = box->width >> 1;
    uint32_t const half_height = box->height >> 1;
    Stretch const columns[] = {{0, half_width}, {half_width, half_width}, {2 * half_width, box->width & 1}};
    Stretch const rows[] = {{0, half_height}, {half_height, half_height}, {2 * half_height, box->height & 1}};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (columns[column].length > 0 && rows[row].length > 0 &&
                !add_part(histograms, frame, *box, columns, rows, column, row)) {
                reset_histograms(histograms);
                return 1;
            }
    return 1;
}

int rk_add_new_objects(rk_object_list* list, rk_candidate const* candidates, rk_tracker_frame const* frame)
{
    if (!list || !candidates || !frame)
        return 0;
    for (uint32_t i = 0; i < frame->vertex_count; ++i)
        if (candidates[i].link_count == 0 && candidates[i].motion_score >= frame->min_score)
            rk_object_list_push(frame, list, &candidates[i]);
    return 1;
}
