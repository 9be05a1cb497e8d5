#include <gtest/gtest.h>

#include "detection/rk_object.h"
#include "image/rk_vertex.h"
#include "math/rk_geometry.h"
#include "support/tracker_scene.h"

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

// 160 x 120 pixels, margin 7; a segment at x = 100.
TEST_F(Objects, NearMeansWithinSevenPixels)
{
    rk_segment const segment = {100, 0, 100, 119};
    struct {
        rk_bbox box;
        int edge, segment;
    } const cases[] = {
        {{7, 7, 20, 20}, 0, 0},
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
    EXPECT_EQ(nullptr, object.candidate);
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

TEST_F(Objects, StaticOnesAverageTheirPlace)
{
    histograms[4].counts[5] = histograms[4].total = 1000;
    rk_bbox const place = {2, 40, 20, 30};
    ASSERT_EQ(1, rk_object_static_init(&object, &scene.frame, &place, histograms, 0.75f, 17));
    EXPECT_EQ(RK_OBJECT_NASCENT, object.flags) << "edges play no part at birth";
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
        float dx, dy, dw, dh;
        uint32_t x, y, width, height;
    } const cases[] = {
        {0.4f, 0.49f, 0.4f, 0.49f, 50, 40, 20, 30},
        {0.5f, 0.5f, 0.5f, 0.5f, 51, 41, 21, 31},
        {-0.97f, -0.5f, -0.5f, -0.5f, 49, 39, 19, 29},
        {-0.94f, -0.49f, -0.49f, -0.49f, 50, 40, 20, 30}, // 0.05 + 0.94, 0.5 + 0.49
        {-1e30f, 1e30f, -1e30f, 1e30f, 40, 55, 10, 45},
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
