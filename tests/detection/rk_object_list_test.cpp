#include <gtest/gtest.h>

#include "detection/rk_object_list.h"
#include "math/rk_geometry.h"
#include "support/tracker_scene.h"

namespace {

using Ids = std::vector<uint32_t>;

class ObjectList : public ::testing::Test {
protected:
    /// Starts an object in the given place; nascent or not.
    rk_object* start(rk_object_list& list, rk_bbox box, bool nascent = false)
    {
        rk_vertex vertex = {box.x, box.y, box.width, box.height, 1.0f, nullptr};
        rk_candidate candidate = {};
        candidate.vertex = &vertex;
        rk_object* const object = rk_object_list_push(&scene.frame, &list, &candidate);
        if (!nascent)
            object->flags &= static_cast<unsigned char>(~RK_OBJECT_NASCENT);
        return object;
    }

    TrackerScene scene;
    ListOwner moving{0};
    ListOwner standing{1};
};

} // namespace

TEST_F(ObjectList, HandsOutIdsAndKeepsTheNewestInFront)
{
    moving.next_id = 41;
    start(moving, {50, 40, 20, 30});
    rk_object* const second = start(moving, {90, 40, 20, 30});
    start(moving, {50, 80, 20, 30});
    EXPECT_EQ((Ids{43, 42, 41}), moving.ids());
    EXPECT_EQ(44u, moving.next_id);

    EXPECT_EQ(1, rk_object_list_remove(&moving, 42));
    EXPECT_EQ((Ids{43, 41}), moving.ids());
    EXPECT_EQ(2u, moving.count);
    EXPECT_EQ(second, moving.dead);
    EXPECT_EQ(42u, second->id) << "readable until the next update";
    EXPECT_EQ(second, start(moving, {70, 40, 20, 30})) << "a birth takes the memory of the dead";
    EXPECT_EQ(nullptr, moving.dead);
    EXPECT_EQ((Ids{44, 43, 41}), moving.ids());
}

TEST_F(ObjectList, UnmatchedOnesWaitOrGo)
{
    rk_segment const segment = {100, 0, 100, 119};
    scene.frame.segments = &segment;
    scene.frame.segment_count = 1;
    scene.frame.now = 5000;
    start(moving, {30, 40, 20, 30});                            // 1: waits
    start(moving, {30, 40, 20, 30}, true);                      // 2: nascent
    start(moving, {2, 40, 20, 30});                             // 3: at the edge
    start(moving, {85, 40, 20, 30});                            // 4: at the segment
    rk_object* const waiting = start(moving, {60, 40, 20, 30}); // 5: waits
    waiting->estimate = {1, 2, 3, 4};
    ASSERT_EQ(1, rk_object_list_update(&scene.frame, &moving));
    EXPECT_EQ((Ids{5, 1}), moving.ids());
    EXPECT_EQ(2u, moving.count);
    EXPECT_EQ(5000u, waiting->lost_time);
    EXPECT_EQ(60u, waiting->estimate.x);
    EXPECT_NE(nullptr, moving.dead);

    scene.frame.now = 5900;
    rk_object_list_update(&scene.frame, &moving);
    EXPECT_EQ(nullptr, moving.dead);
    EXPECT_EQ(5000u, waiting->lost_time) << "the first moment counts";
    scene.frame.now = 6000;
    rk_object_list_update(&scene.frame, &moving);
    EXPECT_EQ((Ids{5, 1}), moving.ids());

    rk_candidate candidate = {};
    rk_vertex vertex = {61, 40, 20, 30, 1.0f, nullptr};
    candidate.vertex = &vertex;
    candidate.link_count = 1;
    waiting->candidate = &candidate;
    scene.frame.now = 6001;
    rk_object_list_update(&scene.frame, &moving);
    EXPECT_EQ((Ids{5}), moving.ids());
    EXPECT_EQ(0u, waiting->lost_time);
    EXPECT_EQ(61u, waiting->bbox.x);

    start(standing, {60, 40, 20, 30});
    rk_object_list_update(&scene.frame, &standing);
    EXPECT_EQ((Ids{}), standing.ids()) << "static objects do not wait";
}

TEST_F(ObjectList, BuffersGrowToTwiceTheNeedAndHalveBelowAThird)
{
    // Objects of the list, candidates; the sizes afterwards.
    struct {
        uint32_t count, need, candidates, matches;
    } const steps[] = {
        {0, 0, 10, 100},                                    // never below the start
        {0, 11, 22, 100}, {0, 8, 22, 100}, {0, 7, 11, 100}, // 3 * 7 is below 22
        {20, 11, 11, 440},                                  // 220 pairs
        {0, 11, 11, 440},                                   // few candidates: matches stay
        {20, 102, 204, 4080}, {20, 70, 204, 4080},          // 1400 is above a third of 4080
        {19, 69, 204, 2040},                                // 1311 is below it, 69 not below a third of 204
    };
    for (auto const& step : steps) {
        SCOPED_TRACE(std::to_string(step.count) + " objects, " + std::to_string(step.need) + " candidates");
        moving.count = step.count;
        ASSERT_EQ(1, rk_object_list_resize_buffers(&moving, step.need));
        EXPECT_EQ(step.candidates, moving.candidates_size);
        EXPECT_EQ(step.matches, moving.matches_size);
    }
    rk_match* const matches = moving.matches;
    moving.count = 1u << 30;
    EXPECT_EQ(0, rk_object_list_resize_buffers(&moving, 70)) << "more pairs than 32 bits count";
    EXPECT_EQ(matches, moving.matches);
    EXPECT_EQ(2040u, moving.matches_size);
    moving.count = 0;
}
