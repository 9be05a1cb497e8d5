#include <gtest/gtest.h>

#include "image/rk_threshold.h"
#include "image/rk_image.h"
#include "image/rk_vertex.h"
#include "image/rkil_FlatImage.h"
#include "support/picture.h"

#include <numeric>

TEST(RkThreshold, EveryTableGivesItsValues)
{
    rkil::FlatImage<1> source, target;
    source.resize(277, 1); // all bytes and an odd rest
    std::iota(source.getImage()->data, source.getImage()->data + 277, static_cast<unsigned char>(0));
    target.resize(277, 1);
    unsigned char table[256];
    for (unsigned int threshold = 0; threshold <= 259; ++threshold) {
        SCOPED_TRACE(threshold);
        rk_threshold_inittable(table, 256, threshold);
        if (threshold == 257) // no step: down again, and neither 0 nor 255
            table[7] = 255;
        if (threshold == 258)
            table[255] = 254;
        if (threshold == 259)
            std::iota(table, table + 256, static_cast<unsigned char>(3));
        ASSERT_TRUE(rk_threshold_gray(table, 256, source.getImage(), target.getImage()));
        for (unsigned int i = 0; i < 277; ++i)
            ASSERT_EQ(table[i % 256], target.getImage()->data[i]) << i;
    }
}

TEST(RkImageCount, CountsWhatLiesInTheRegion)
{
    test::Picture const picture({"#...", ".##.", "...#"});
    struct {
        char const* why;
        rk_bbox box;
        float share;
        uint32_t count;
    } const cases[] = {
        {"all", {0, 0, 4, 3}, 4.0f / 12.0f, 4},
        {"touches right and bottom", {2, 1, 2, 2}, 0.5f, 2},
        {"one column beyond", {3, 1, 2, 2}, -1.0f, 99},
        {"right side wraps", {4294967295u, 0, 2, 1}, -1.0f, 99},
        {"no width", {0, 0, 0, 1}, -1.0f, 99},
    };
    for (auto const& c : cases) {
        uint32_t count = 99;
        EXPECT_EQ(c.share, rk_image_count(&c.box, &picture.image(), 1, &count)) << c.why;
        EXPECT_EQ(c.count, count) << c.why;
        rk_vertex const vertex = {c.box.x, c.box.y, c.box.width, c.box.height, 1.0f, nullptr};
        EXPECT_EQ(c.share, rk_image_count(&vertex, &picture.image(), 255, &count)) << c.why;
    }
    uint32_t count = 99;
    rk_bbox const all = {0, 0, 4, 3};
    EXPECT_EQ(1.0f, rk_image_count(&all, &picture.image(), 0, &count)) << "every byte is at least 0";
}
