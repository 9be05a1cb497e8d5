#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

#include "math/rk_running_avg.h"

namespace {

constexpr uint32_t side = 16;
rk_bbox const region = {2, 2, 12, 12};

/// A scene with one vertical edge between columns 7 and 8. The region's interior rows 3 to 12 hold two edge pixels each,
/// of orientation 1. The model knows that orientation down to row 7; below it knows another.
struct Scene {
    BackgroundModel model{side, side, 1};
    ByteImage gray{side, side, 1}, dark{side, side, 4}, mask{side, side, 1, 1};

    Scene()
    {
        for (uint32_t i = 0; i < side * side; ++i) {
            gray.data[i] = i % side < 8 ? 0 : 100;
            model.edge_model[i].value = i / side < 8 ? 1.0f : 100.0f;
        }
    }

    /// -1 when there is no score.
    float score(uint32_t radius, rk_bbox box = region, rk_image const* colour = nullptr)
    {
        float result = -1.0f;
        int const scored = rk_background_is_background(&model, colour ? colour : &dark, &gray, &mask, &box, radius, 1, &result);
        EXPECT_EQ(scored, result >= 0.0f);
        return result;
    }
};

} // namespace

TEST(BackgroundRegion, ScoreIsTheShareOfEdgesThatTheModelKnows)
{
    Scene scene;
    EXPECT_FLOAT_EQ(0.5f, scene.score(0)); // rows 3 to 7 of 3 to 12
    EXPECT_FLOAT_EQ(0.5f, scene.score(1));
    EXPECT_FLOAT_EQ(0.6f, scene.score(2)); // grows to 3, half of it is 1: row 8 sees row 7
    EXPECT_FLOAT_EQ(0.7f, scene.score(4)); // grows to 5, half of it is 2
    EXPECT_EQ(-1.0f, scene.score(6));      // twice 6 is not below 12

    std::fill_n(scene.mask.data, 8 * side, (uint8_t)0); // nothing above row 8
    EXPECT_FLOAT_EQ(0.5f, scene.score(1));              // the mask is not asked
    EXPECT_FLOAT_EQ(0.2f, scene.score(2));              // row 8 of rows 8 to 12
    std::fill_n(scene.mask.data, side * side, (uint8_t)0);
    EXPECT_EQ(1.0f, scene.score(2));
}

TEST(BackgroundRegion, WithoutEnoughEdgesThereIsNoDoubt)
{
    Scene scene;
    for (uint32_t i = 0; i < side * side; ++i)
        scene.model.edge_model[i].value = 180.0f;
    EXPECT_EQ(1.0f, scene.score(1, {6, 0, 4, 6})); // 8 edges, none of them known
    EXPECT_EQ(0.0f, scene.score(1, {6, 0, 4, 7})); // 10 edges
    std::fill_n(scene.mask.data, side * side, (uint8_t)0);
    for (uint32_t row = 3; row < 8; ++row)
        scene.mask.data[row * side + 7] = scene.mask.data[row * side + 8] = 1;
    EXPECT_EQ(0.0f, scene.score(2)); // 10 edges again
    scene.mask.data[3 * side + 7] = 0;
    EXPECT_EQ(1.0f, scene.score(2)); // 9
}

TEST(BackgroundRegion, OrientationsMatchAroundTheTurn)
{
    BackgroundModel model(9, 9, 0);
    struct {
        float known;
        uint32_t orientation;
        int matches;
    } const cases[] = {{100.9f, 129, 1}, {100.9f, 130, 0}, {100.0f, 71, 1}, {100.0f, 70, 0}, {1.0f, 331, 0}, {1.0f, 332, 1},
        {360.0f, 29, 1}, {0.0f, 1, 0}};
    for (auto const& c : cases) {
        model.edge_model[4 + 9 * 4].value = c.known;
        EXPECT_EQ(c.matches, rk_background_check_region(&model, c.orientation, 4, 4, 1)) << c.known << " " << c.orientation;
    }
    // From x - radius up to, but not including, x + radius.
    model.edge_model[4 + 9 * 4].value = 90.0f;
    struct {
        uint32_t x, y, radius;
        int found;
    } const places[] = {{5, 5, 1, 1}, {6, 5, 1, 0}, {3, 4, 1, 0}, {4, 3, 1, 0}, {3, 3, 2, 1}, {0, 0, 4, 0}, {0, 0, 5, 1},
        {8, 8, 4, 1}, {4, 4, 0, 0}, {4, 4, UINT32_MAX, 1}};
    for (auto const& p : places)
        EXPECT_EQ(p.found, rk_background_check_region(&model, 90, p.x, p.y, p.radius)) << p.x << "," << p.y << " " << p.radius;
}

// Half the pixels at mean - d, half at mean + d: the variance is d squared.
TEST(BackgroundSurface, IsSmoothAndNotDark)
{
    struct Channel {
        int mean, d;
    };
    struct {
        char const* why;
        int mode;
        Channel c[3];
        int smooth;
    } const cases[] = {
        {"variance 576", 1, {{100, 24}, {100, 24}, {100, 24}}, 1},
        {"variance 625 in blue", 1, {{100, 25}, {100, 0}, {100, 0}}, 0},
        {"mean 50", 1, {{50, 0}, {50, 0}, {50, 0}}, 0},
        {"lightness 30, strong chroma", 2, {{30, 0}, {200, 0}, {200, 0}}, 0},
        {"lightness 31", 2, {{31, 24}, {0, 0}, {0, 0}}, 1},
        {"chroma variance 81", 2, {{100, 24}, {100, 9}, {100, 9}}, 1},
        {"chroma variance 100", 2, {{100, 0}, {100, 10}, {100, 0}}, 0},
    };
    for (auto const& c : cases) {
        ByteImage image(6, 4, 4, 255); // outside of the region all is white
        rk_bbox const inner = {1, 1, 4, 2};
        for (uint32_t i = 0; i < 8; ++i)
            for (size_t k = 0; k < 3; ++k)
                image.data[4 * (1 + i % 4 + 6 * (1 + i / 4)) + k] = (uint8_t)(c.c[k].mean + (i % 2 ? c.c[k].d : -c.c[k].d));
        EXPECT_EQ(c.smooth, rk_background_check_varmean(&image, &inner, c.mode)) << c.why;
    }
}
