#include "detection/rk_candidate.h"
#include "image/rk_vertex.h"

#include <utility>

rk_bbox rk_candidate_box(rk_candidate const& candidate)
{
    rk_vertex const& region = *candidate.vertex;
    return {region.x, region.y, region.width, region.height};
}

void rk_candidate_heapsort(rk_match* matches, uint32_t count)
{
    if (!matches)
        return;
    rk_candidate_heapify(matches, count);
    for (uint32_t end = count; end > 1;) {
        --end;
        std::swap(matches[0], matches[end]);
        rk_candidate_siftdown(matches, 0, end);
    }
}

void rk_candidate_heapify(rk_match* matches, uint32_t count)
{
    if (!matches)
        return;
    for (uint32_t root = count / 2; root > 0;) {
        --root;
        rk_candidate_siftdown(matches, root, count);
    }
}

void rk_candidate_siftdown(rk_match* matches, uint32_t root, uint32_t count)
{
    if (!matches)
        return;
    // Entries from count / 2 on have no children.
    while (root < count / 2) {
        uint32_t child = 2 * root + 1;
        if (child + 1 < count && matches[child].confidence < matches[child + 1].confidence)
            ++child;
        if (!(matches[root].confidence < matches[child].confidence))
            return;
        std::swap(matches[root], matches[child]);
        root = child;
    }
}
