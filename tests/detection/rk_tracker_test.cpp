#include <gtest/gtest.h>

#include "detection/rk_tracker.h"
#include "math/rk_geometry.h"
#include "support/tracker_scene.h"

#include <cstring>
#include <random>

namespace {

using Ids = std::vector<uint32_t>;

constexpr uint32_t RED = 0xff0000;
constexpr uint32_t BLUE = 0x0000ff;

class Tracker : public ::testing::Test {
protected:
    int step(uint32_t passed = 40)
    {
        scene.frame.now += passed;
        return rk_tracker_process(&scene.frame, &list);
    }

    rk_object& object(uint32_t id) { return *rk_object_list_find(&list, id); }

    /// Objects 1 and 2, red and blue, side by side; tracked after one match when grown. Then they become one blob.
    void meetAndMerge(bool secondIsGrown)
    {
        scene.frame.min_track_length = 1;
        scene.clear().blob(left, RED);
        step();
        step();
        scene.clear().blob(left, RED).blob(right, BLUE);
        step();
        if (secondIsGrown)
            step();
        scene.clear().paint(left, RED).paint(right, BLUE).region({40, 40, 60, 30});
        step();
    }

    rk_bbox const left = {40, 40, 20, 30};
    rk_bbox const right = {80, 40, 20, 30};
    TrackerScene scene;
    ListOwner list{0};
};

void expectBox(rk_bbox const& want, rk_bbox const& got)
{
    EXPECT_TRUE(want.x == got.x && want.y == got.y && want.width == got.width && want.height == got.height)
        << got.x << "," << got.y << " " << got.width << "x" << got.height;
}

} // namespace

TEST_F(Tracker, ObjectKeepsItsIdFromBirthToLoss)
{
    scene.clear().blob({50, 40, 20, 30}, RED);
    ASSERT_EQ(1, step());
    EXPECT_EQ((Ids{1}), list.ids());
    EXPECT_EQ(0u, object(1).age);
    EXPECT_EQ(40u, object(1).created);

    scene.clear().blob({52, 40, 20, 30}, RED);
    ASSERT_EQ(1, step());
    // Same colours and size; 540 shared pixels of 660: 0.1 * 540 / 660 + 0.4 + 0.25 + 0.25.
    EXPECT_NEAR(0.9 + 0.1 * 540 / 660, object(1).confidence, 1e-6);
    scene.clear().blob({54, 40, 20, 30}, RED);
    step();
    EXPECT_NEAR(1.0, object(1).confidence, 1e-6) << "it moves by 2 a frame, and this was foreseen";
    expectBox({54, 40, 20, 30}, object(1).estimate);
    EXPECT_TRUE(rk_object_nascent(&object(1)));
    scene.clear().blob({56, 40, 20, 30}, RED);
    step();
    EXPECT_FALSE(rk_object_nascent(&object(1)));
    EXPECT_EQ(nullptr, object(1).candidate);

    scene.clear();
    EXPECT_EQ(0, step()) << "no regions at all";
    EXPECT_EQ(200u, object(1).lost_time);
    expectBox({56, 40, 20, 30}, object(1).estimate);
    scene.blob({58, 40, 20, 30}, RED);
    step(1000);
    EXPECT_EQ(0u, object(1).lost_time);
    EXPECT_EQ(4u, object(1).age);
    scene.clear();
    step();
    step(1000);
    EXPECT_EQ((Ids{1}), list.ids());
    step(1);
    EXPECT_EQ((Ids{}), list.ids());
}

TEST_F(Tracker, TwoObjectsShareABlobAndPartAgain)
{
    meetAndMerge(true);
    EXPECT_EQ((Ids{2, 1}), list.ids());
    for (uint32_t id : {1u, 2u}) {
        EXPECT_NE(0, object(id).merged) << id;
        EXPECT_EQ(0u, object(id).lost_time) << id;
        expectBox({40, 40, 60, 30}, object(id).bbox);
        EXPECT_EQ(0.0f, object(id).dw.value) << id;
        EXPECT_EQ(600u, object(id).histograms[4].total) << id;
    }
    scene.clear().blob({36, 40, 20, 30}, RED).blob({84, 40, 20, 30}, BLUE);
    step();
    EXPECT_EQ((Ids{2, 1}), list.ids());
    expectBox({36, 40, 20, 30}, object(1).bbox);
    expectBox({84, 40, 20, 30}, object(2).bbox);
}

// Both pairs score alike; the sort puts the one of the newer object last, and links begin from there.
TEST_F(Tracker, WithoutMergesTheOneThatIsFirstInOrderGetsTheBlob)
{
    scene.frame.max_track_merges = 1;
    meetAndMerge(true);
    EXPECT_EQ((Ids{2, 1}), list.ids());
    expectBox({40, 40, 60, 30}, object(2).bbox);
    EXPECT_EQ(0, object(2).merged);
    expectBox(left, object(1).bbox);
    EXPECT_EQ(scene.frame.now, object(1).lost_time);
}

TEST_F(Tracker, NascentObjectGivesWayToAnOlderOne)
{
    meetAndMerge(false);
    EXPECT_EQ((Ids{1}), list.ids());
    expectBox({40, 40, 60, 30}, object(1).bbox);
    EXPECT_EQ(0, object(1).merged) << "it has the blob for itself";
    EXPECT_EQ(2u, list.dead->id);
}

TEST_F(Tracker, StaticListServesTheOldestFirstAndSharesNothing)
{
    ListOwner standing(1);
    scene.clear().blob({40, 40, 20, 30}, RED).blob({80, 40, 20, 30}, RED);
    ASSERT_EQ(1, rk_tracker_static_process(&scene.frame, &standing));
    EXPECT_EQ((Ids{2, 1}), standing.ids());
    // The second region overlaps both alike; the first only object 1, which takes it for the better overlap.
    scene.clear().paint({0, 0, 160, 120}, RED).region({38, 40, 20, 30}).region({55, 40, 30, 30});
    ASSERT_EQ(1, rk_tracker_static_process(&scene.frame, &standing));
    EXPECT_EQ((Ids{2, 1}), standing.ids());
    expectBox({38, 40, 20, 30}, rk_object_list_find(&standing, 1)->bbox);
    expectBox({55, 40, 30, 30}, rk_object_list_find(&standing, 2)->bbox);
}

TEST_F(Tracker, RegionsThatAreNotThereOrReachOutOfTheImageDoNoHarm)
{
    scene.clear().region({150, 110, 500, UINT32_MAX}).region({UINT32_MAX, 0, 5, 5}).region({80, 60, 0, 0});
    scene.frame.vertex_count = 12;
    ASSERT_EQ(1, step());
    EXPECT_EQ((Ids{3, 2, 1}), list.ids());
    EXPECT_EQ(1, step());
}

// The quarters that make up the box give the very histograms of the five walks that define them, odd and tiny sizes included.
TEST_F(Tracker, BoxHistogramsAreThoseOfTheirParts)
{
    std::mt19937 random(5);
    std::vector<unsigned char> pixels(40 * 30 * 4), maskBytes(40 * 30);
    for (unsigned char& byte : pixels)
        byte = static_cast<unsigned char>(random() % 3 ? random() : random() % 20);
    for (unsigned char& byte : maskBytes)
        byte = random() % 4 ? 255 : 0;
    rk_image image = {pixels.data(), 40, 30, 4, 40 * 30 * 4}, mask = {maskBytes.data(), 40, 30, 1, 40 * 30};
    scene.frame.image = &image;
    for (uint32_t width = 0; width < 9; ++width)
        for (uint32_t height = 0; height < 9; ++height)
            for (rk_image* given : {static_cast<rk_image*>(nullptr), &mask}) {
                scene.frame.mask = given;
                rk_bbox const box = {31, 21, width, height};
                uint32_t const w = width / 2, h = height / 2;
                rk_bbox const parts[] = {
                    {31, 21, width, h}, {31, 21 + h, width, h}, {31 + w, 21, w, height}, {31, 21, w, height}, box};
                rk_histogram got[RK_BOX_HISTOGRAMS];
                rk_tracker_populate_histograms(got, &scene.frame, &box);
                for (unsigned int i = 0; i < RK_BOX_HISTOGRAMS; ++i) {
                    rk_histogram want;
                    ASSERT_EQ(1, rk_histogram_set(&want, &image, given, &parts[i]));
                    ASSERT_EQ(0, std::memcmp(&want, &got[i], sizeof(want))) << i << ": " << width << " x " << height;
                }
            }
    rk_histogram got[RK_BOX_HISTOGRAMS];
    rk_bbox const out = {31, 21, 10, 9};
    ASSERT_EQ(1, rk_tracker_populate_histograms(got, &scene.frame, &out));
    for (rk_histogram const& histogram : got)
        EXPECT_EQ(0u, histogram.total) << "a column beyond the image";
}

// Average size 10 x 30 against 30 x 30: width score 1 - 20 / 40, height score 1. Overlap 0.5.
TEST_F(Tracker, ScoreOfAPair)
{
    struct {
        char const* why;
        unsigned char flags;
        unsigned int alike, unlike; // pairs of histograms with the same colour, with different ones; others are empty
        double histogram_score, confidence;
    } const cases[] = {
        {"all colours alike", 0, 5, 0, 1.0, 0.05 + 0.4 + 0.125 + 0.25},
        {"colours known and unlike", 0, 0, 1, 0.0, 0.0},
        {"near an edge", RK_OBJECT_NEAR_EDGE, 5, 0, 1.0, 1.0},
        {"near a segment, just enough", RK_OBJECT_NEAR_SEGMENT, 2, 3, 0.4, 0.4},
        {"near an edge, no colours known", RK_OBJECT_NEAR_EDGE, 0, 0, 0.0, 0.0},
    };
    rk_vertex vertex = {0, 0, 30, 30, 1.0f, nullptr};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        rk_object pairObject = {};
        rk_candidate candidate = {};
        candidate.vertex = &vertex;
        pairObject.flags = c.flags;
        pairObject.average_width.value = 10.0f;
        pairObject.average_height.value = 30.0f;
        for (unsigned int i = 0; i < c.alike + c.unlike; ++i) {
            pairObject.histograms[i].counts[3] = pairObject.histograms[i].total = 7;
            candidate.histograms[i].counts[i < c.alike ? 3 : 4] = candidate.histograms[i].total = 9;
        }
        rk_match match = {0.5f, 0, 0, 0, &candidate, &pairObject};
        ASSERT_EQ(1, rk_track_weigh_confidences(&match));
        EXPECT_FLOAT_EQ(0.5f, match.width_score);
        EXPECT_FLOAT_EQ(1.0f, match.height_score);
        EXPECT_NEAR(c.histogram_score, match.histogram_score, 1e-6);
        EXPECT_NEAR(c.confidence, match.confidence, 1e-6); // a few roundings of single precision

        ASSERT_EQ(1, rk_link_candidates(&match));
        EXPECT_EQ(&candidate, pairObject.candidate);
        EXPECT_EQ(match.confidence, pairObject.confidence);
        EXPECT_EQ(0, candidate.link_count) << "for the caller to set";
    }
}
