#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

TEST(Background, IsEmptyAfterItsEndAndAfterAFailure)
{
    BackgroundModel model(4, 4, 1);
    EXPECT_EQ(0, rk_background_resize(&model, UINT32_MAX, UINT32_MAX));
    EXPECT_EQ(0u, model.width);
    EXPECT_EQ(0, model.allocated);
    EXPECT_EQ(1, rk_background_init(&model, 5, 4, 0)); // and may be used again
    EXPECT_EQ(1, rk_background_deinit(&model));
    EXPECT_EQ(1, rk_background_deinit(&model));
}

TEST(Background, RegionMustEndInsideTheModel)
{
    BackgroundModel model(6, 5, 0);
    struct {
        rk_bbox region;
        int valid;
    } const cases[] = {{{0, 0, 6, 5}, 1}, {{6, 5, 0, 0}, 1}, {{1, 0, 6, 5}, 0}, {{0, 1, 6, 5}, 0}, {{UINT32_MAX, 0, 2, 1}, 0},
        {{0, 2, 1, UINT32_MAX}, 0}};
    for (auto const& c : cases) {
        EXPECT_EQ(c.valid, rk_background_valid_region(&model, &c.region));
        EXPECT_EQ(c.valid, rk_background_reset_region(&model, &c.region));
    }
}

TEST(Background, ResetRegionIsBackgroundUntilItIsSeededAnew)
{
    for (int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        BackgroundModel model(4, 4, mode);
        for (size_t channel = 0; channel < (mode ? 3 : 1); ++channel)
            model.setChannel(channel, 100, 1280);
        ByteImage const bright(4, 4, mode ? 4 : 1, 200);
        EXPECT_EQ(16u, Comparison(&model, &bright).count);

        rk_bbox const region = {1, 2, 2, 1};
        EXPECT_EQ(1, rk_background_reset_region(&model, &region));
        std::vector<uint8_t> wiped(16, 255);
        wiped[9] = wiped[10] = 0;
        EXPECT_EQ(wiped, Comparison(&model, &bright).foreground);
        EXPECT_EQ(100, model.at(0, 9).mean); // only marked

        ASSERT_EQ(1, model.learn(bright));
        EXPECT_EQ(200, model.at(0, 9).mean);
        EXPECT_EQ(109, model.at(0, 8).mean); // (100 * 116 + 12 * 200) / 128
        ByteImage const dark(4, 4, mode ? 4 : 1, 0);
        EXPECT_NE(0, Comparison(&model, &dark).foreground[9]); // a band that was wiped is not left open
    }
}

TEST(Background, ShowsTheMeanOfEachPixel)
{
    for (int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        unsigned int const channels = mode ? 4 : 1;
        BackgroundModel model(4, 4, mode);
        for (size_t channel = 0; channel < (mode ? 3 : 1); ++channel)
            model.setChannel(channel, int32_t(100 + channel), 85);
        ByteImage shown(4, 4, channels, 7), smaller(4, 3, channels, 7);
        ASSERT_EQ(1, rk_background_get_mean(&model, &shown));
        std::vector<uint8_t> const pixel = mode ? std::vector<uint8_t>{100, 101, 102, 255} : std::vector<uint8_t>{100};
        EXPECT_EQ(pixel, std::vector<uint8_t>(shown.data + 5 * channels, shown.data + 6 * channels));
        EXPECT_EQ(0, rk_background_get_mean(&model, &smaller));

        rk_bbox const whole = {0, 0, 4, 4};
        model.at(0, 5).mean = -1; // no byte holds these
        model.at(0, 6).mean = 300;
        rk_background_refresh_mirror(&model, &whole);
        ASSERT_EQ(1, rk_background_get_mean(&model, &shown));
        EXPECT_EQ(0, shown.data[5 * channels]);
        EXPECT_EQ(255, shown.data[6 * channels]);
        EXPECT_EQ(pixel, std::vector<uint8_t>(shown.data, shown.data + channels));
    }
}
