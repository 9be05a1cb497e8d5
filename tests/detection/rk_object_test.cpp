#include <gtest/gtest.h>

#include "detection/rk_object.h"
#include "image/rk_vertex.h"
#include "math/rk_geometry.h"
#include "support/tracker_scene.h"

#include <memory>

namespace {

constexpr unsigned char BOTH_NEAR = RK_OBJECT_NEAR_EDGE | RK_OBJECT_NEAR_SEGMENT;

/// An object, and the candidate that it meets next.
class Objects : public ::testing::Test {
protected:
    void bear(rk_bbox box)
    {
        histograms[4].counts[5] = histograms[4].total = 1000;
        ASSERT_EQ(1, rk_object_init(&object, &scene.frame, &box, histograms, 0.75f, 17));
    }

    void bearStatic(rk_bbox box)
    {
        histograms[4].counts[5] = histograms[4].total = 1000;
        ASSERT_EQ(1, rk_object_static_init(&object, &scene.frame, &box, histograms, 0.75f, 17));
    }

    /// Links a candidate that link_count objects share; its whole-box histogram holds 400 pixels of cell 6.
    void meet(rk_bbox box, unsigned char links = 1)
    {
        vertex = {box.x, box.y, box.width, box.height, 0.0f, nullptr};
        candidate.vertex = &vertex;
        candidate.motion_score = 0.25f;
        candidate.link_count = links;
        candidate.histograms[4].counts[6] = candidate.histograms[4].total = 400;
        object.candidate = &candidate;
    }

    TrackerScene scene;
    rk_histogram histograms[RK_BOX_HISTOGRAMS] = {};
    rk_vertex vertex = {};
    rk_candidate candidate = {};
    rk_object object = {};
};

} // namespace

TEST_F(Objects, BirthInTheMiddle)
{
    scene.frame.now = 1234;
    object.age = 99;
    bear({50, 40, 20, 30});
    EXPECT_EQ(17u, object.id);
    EXPECT_EQ(1234u, object.created);
    EXPECT_EQ(0u, object.lost_time);
    EXPECT_EQ(0u, object.age);
    EXPECT_EQ(0.75f, object.motion_score);
    EXPECT_EQ(RK_OBJECT_NASCENT, object.flags);
    EXPECT_EQ(0, object.dx.started);
    EXPECT_EQ(0.0f, object.dx.value);
    EXPECT_EQ(20.0f, object.average_width.value);
    EXPECT_EQ(30.0f, object.average_height.value);
    EXPECT_EQ(1000u, object.histograms[4].counts[5]);
    for (rk_bbox const& box : {object.bbox, object.estimate, object.first_bbox})
        EXPECT_TRUE(box.x == 50 && box.y == 40 && box.width == 20 && box.height == 30);
    EXPECT_EQ(0, rk_object_init(&object, &scene.frame, nullptr, histograms, 0, 1));
    EXPECT_EQ(0, rk_object_init(nullptr, &scene.frame, &object.bbox, histograms, 0, 1));
}

// 160 x 120 pixels, margin 7; a segment at x = 100.
TEST_F(Objects, NearMeansWithinSevenPixels)
{
    rk_segment const segment = {100, 0, 100, 119};
    struct {
        rk_bbox box;
        int edge, segment;
    } const cases[] = {
        {{7, 7, 20, 20}, 0, 0},
        {{6, 7, 20, 20}, 1, 0},
        {{7, 6, 20, 20}, 1, 0},
        {{110, 50, 42, 20}, 0, 0}, // right side 152 + 7 = 159
        {{110, 50, 43, 20}, 1, 0},
        {{20, 50, 20, 62}, 0, 0}, // bottom 112 + 7 = 119
        {{20, 50, 20, 63}, 1, 0},
        {{50, 50, 42, 20}, 0, 0}, // right side 92 + 7 = 99
        {{50, 50, 43, 20}, 0, 1},
        {{107, 50, 20, 20}, 0, 1},
        {{108, 50, 20, 20}, 0, 0},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(std::to_string(c.box.x) + "," + std::to_string(c.box.y) + " " + std::to_string(c.box.width));
        EXPECT_EQ(c.edge, rk_object_near_edge(&c.box, scene.frame.image));
        EXPECT_EQ(c.segment, rk_object_near_segment(&c.box, &segment, 1));
        EXPECT_EQ(0, rk_object_near_segment(&c.box, &segment, 0));
    }
    EXPECT_EQ(-1, rk_object_near_edge(nullptr, scene.frame.image));
    EXPECT_EQ(-1, rk_object_near_edge(&cases[0].box, nullptr));
    EXPECT_EQ(0, rk_object_near_segment(&cases[0].box, nullptr, 1));
}

TEST_F(Objects, BornNearAnEdgeItsFirstSizeIsThatOfTheFirstFreeBox)
{
    bear({2, 40, 10, 30});
    EXPECT_EQ(RK_OBJECT_NASCENT | RK_OBJECT_NEAR_EDGE, object.flags);
    EXPECT_EQ(0, object.average_width.started);
    meet({3, 40, 15, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(0, object.average_width.started);
    EXPECT_EQ(0u, object.histograms[4].counts[6]) << "what is cut off teaches no colour";
    EXPECT_EQ(1.0f, object.dx.value) << "but motion";

    object.flags &= static_cast<unsigned char>(~BOTH_NEAR);
    meet({20, 40, 25, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(25.0f, object.average_width.value);

    scene.frame.image = nullptr;
    bear({50, 40, 20, 30});
    EXPECT_EQ(RK_OBJECT_NASCENT | RK_OBJECT_NEAR_EDGE, object.flags);
}

TEST_F(Objects, AloneItLearnsMotionSizeAndColour)
{
    bear({50, 40, 20, 30});
    meet({53, 35, 24, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(3.0f, object.dx.value); // first samples count in full
    EXPECT_EQ(-5.0f, object.dy.value);
    EXPECT_EQ(4.0f, object.dw.value);
    EXPECT_EQ(0.0f, object.dh.value);
    EXPECT_FLOAT_EQ(20.1f, object.average_width.value); // 24 * 0.025 + 20 * 0.975
    EXPECT_EQ(975u, object.histograms[4].counts[5]);
    EXPECT_EQ(10u, object.histograms[4].counts[6]);
    EXPECT_EQ(53u, object.bbox.x);
    EXPECT_EQ(50u, object.first_bbox.x);
    EXPECT_EQ(0.25f, object.motion_score);
    EXPECT_EQ(nullptr, object.candidate);
    EXPECT_EQ(1u, object.age);
    EXPECT_EQ(0, rk_object_update(&object, &scene.frame)) << "nothing linked";
    EXPECT_EQ(1u, object.age);

    meet({58, 35, 24, 30});
    rk_object_update(&object, &scene.frame);
    EXPECT_FLOAT_EQ(3.8f, object.dx.value); // 5 * 0.4 + 3 * 0.6
    EXPECT_TRUE(rk_object_nascent(&object));
    meet({58, 35, 24, 30});
    rk_object_update(&object, &scene.frame);
    EXPECT_FALSE(rk_object_nascent(&object)) << "third match";
}

TEST_F(Objects, SharingLeavesItInDoubtForOneMatchMore)
{
    bear({50, 40, 20, 30});
    meet({60, 40, 30, 30}, 2);
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_NE(0, object.merged);
    EXPECT_EQ(0, object.dx.started);
    EXPECT_EQ(1000u, object.histograms[4].counts[5]);
    EXPECT_FLOAT_EQ(20.1f, object.average_width.value); // 30 * 0.01 + 20 * 0.99

    meet({62, 40, 30, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(0, object.merged);
    EXPECT_EQ(0, object.dx.started) << "the change since a shared box says nothing";
    EXPECT_FLOAT_EQ(20.199f, object.average_width.value); // 30 * 0.01 + 20.1 * 0.99

    meet({63, 40, 30, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(1.0f, object.dx.value);
    EXPECT_EQ(0.025f, object.average_width.weight);
}

TEST_F(Objects, OnRequestItLearnsEvenNearAnEdge)
{
    bear({50, 40, 20, 30});
    object.flags |= RK_OBJECT_NEAR_SEGMENT;
    scene.frame.always_update_histograms = 1;
    meet({50, 40, 24, 30});
    ASSERT_EQ(1, rk_object_update(&object, &scene.frame));
    EXPECT_EQ(10u, object.histograms[4].counts[6]);
    EXPECT_FLOAT_EQ(20.1f, object.average_width.value);
}

TEST_F(Objects, StaticOnesAverageTheirPlace)
{
    bearStatic({2, 40, 20, 30});
    EXPECT_EQ(RK_OBJECT_NASCENT, object.flags) << "edges play no part at birth";
    EXPECT_EQ(20.0f, object.average_width.value);
    meet({202, 40, 20, 30});
    ASSERT_EQ(1, rk_object_static_update(&object, &scene.frame));
    EXPECT_FLOAT_EQ(3.0f, object.dx.value); // 202 * 0.005 + 2 * 0.995
    EXPECT_EQ(10u, object.histograms[4].counts[6]);
    meet({602, 40, 20, 30}, 2);
    ASSERT_EQ(1, rk_object_static_update(&object, &scene.frame));
    EXPECT_FLOAT_EQ(3.0f, object.dx.value);
    EXPECT_EQ(602u, object.bbox.x);
    EXPECT_NE(0, object.merged);

    object.dx.value = 12.5f;
    object.dy.value = 12.49f;
    object.dw.value = 0.0f;
    object.dh.value = 7.75f;
    rk_bbox box = {};
    rk_object_static_estimate(&object, &box);
    EXPECT_TRUE(box.x == 13 && box.y == 12 && box.width == 0 && box.height == 8);
}

TEST_F(Objects, EstimateMovesByTheMeanChangeAndAtMostHalfTheSize)
{
    bear({50, 40, 20, 30});
    struct {
        float dx;
        uint32_t x;
        float dy;
        uint32_t y;
        float dw;
        uint32_t width;
        float dh;
        uint32_t height;
    } const cases[] = {
        {0.4f, 50, 0.4f, 40, 0.4f, 20, 0.4f, 30},
        {0.5f, 51, 0.5f, 41, 0.5f, 21, 0.5f, 31},
        {-0.97f, 49, -0.5f, 39, -0.5f, 19, -0.5f, 29},
        {-0.94f, 50, -0.49f, 40, -0.49f, 20, -0.49f, 30}, // 0.05 + 0.94, 0.5 + 0.49
        {-1.9f, 49, -1.9f, 38, -1.9f, 18, -1.9f, 28},
        {99.0f, 60, 99.0f, 55, 99.0f, 30, 99.0f, 45},
        {-99.0f, 40, -99.0f, 25, -99.0f, 10, -99.0f, 15},
        {-1e30f, 40, 1e30f, 55, -1e30f, 10, 1e30f, 45},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.dx);
        object.dx.value = c.dx;
        object.dy.value = c.dy;
        object.dw.value = c.dw;
        object.dh.value = c.dh;
        rk_bbox box = {};
        ASSERT_EQ(1, rk_object_estimate(&object, &box));
        EXPECT_EQ(c.x, box.x);
        EXPECT_EQ(c.y, box.y);
        EXPECT_EQ(c.width, box.width);
        EXPECT_EQ(c.height, box.height);
    }
    object.bbox = {3, 2, 4, 1};
    object.dx.value = object.dy.value = object.dw.value = object.dh.value = -99.0f;
    rk_object_estimate(&object, &object.estimate);
    EXPECT_EQ(1u, object.estimate.x); // half of 4
    EXPECT_EQ(2u, object.estimate.y); // half of 1 is 0
    EXPECT_EQ(3u, object.estimate.width);
    EXPECT_EQ(3u, object.estimate.height) << "a box of a pixel counts as 3 when it shrinks";
    object.bbox = {3, 2, 20, 20};
    rk_object_estimate(&object, &object.estimate);
    EXPECT_EQ(0u, object.estimate.x);
    EXPECT_EQ(0u, object.estimate.y);
}

TEST_F(Objects, NearDeathWhenNascentOrLostForTooLong)
{
    bear({50, 40, 20, 30});
    EXPECT_EQ(1, rk_object_near_death(&object, 100, 1000));
    object.flags = 0;
    EXPECT_EQ(0, rk_object_near_death(&object, 5000, 1000));
    object.lost_time = 4294967290u; // the clock wraps 6 ms later
    EXPECT_EQ(0, rk_object_near_death(&object, 994, 1000));
    EXPECT_EQ(1, rk_object_near_death(&object, 995, 1000));
}
