#include <gtest/gtest.h>

#include "image/rk_image.h"
#include "image/rkil_FlatImage.h"
#include "math/rk_bbox.h"
#include "support/picture.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

using test::Picture;
using test::rowsOf;
using Rows = std::vector<std::string>;

namespace {

/// An owned image whose bytes count up from 1.
template <unsigned int N> rkil::FlatImage<N> counted(unsigned int width, unsigned int height)
{
    rkil::FlatImage<N> image;
    image.resize(width, height);
    std::iota(image.getImage()->data, image.getImage()->data + image.getImage()->size, static_cast<unsigned char>(1));
    return image;
}

std::vector<int> bytesOf(rk_image const& image)
{
    return {image.data, image.data + image.size};
}

} // namespace

TEST(RkImage, KeepsPixelsOfTheSameSizeAndZerosAnother)
{
    rk_image image;
    std::memset(&image, 0xcd, sizeof image); // what the record held does not matter
    ASSERT_TRUE(rk_init_image(&image, 2, 3, 4));
    EXPECT_EQ(std::vector<int>(24, 0), bytesOf(image));
    image.data[5] = 9;
    unsigned char const* const buffer = image.data;
    ASSERT_TRUE(rk_ensure_image(&image, 2, 3, 4));
    EXPECT_EQ(buffer, image.data);
    EXPECT_EQ(9, image.data[5]);
    ASSERT_TRUE(rk_ensure_image(&image, 3, 2, 4)); // as many bytes, another shape
    EXPECT_EQ(std::vector<int>(24, 0), bytesOf(image));
    ASSERT_TRUE(rk_resize_image(&image, 1, 2, 1, 7));
    EXPECT_EQ((std::vector<int>{7, 7}), bytesOf(image));
    ASSERT_TRUE(rk_ensure_image(&image, 0, 0, 1)); // how a mask is dropped
    EXPECT_FALSE(rk_image_valid(&image));
    rk_free_image(&image);
}

TEST(RkImage, SizesBeyond32BitsAreRefusedAndLeaveNothing)
{
    struct {
        uint32_t width, height, channels;
    } const sizes[] = {
        {65536, 65536, 1},  // 2^32: wraps to 0
        {1431655766, 1, 3}, // wraps to 2
    };
    for (auto const& size : sizes) {
        SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height));
        rk_image image = {};
        ASSERT_TRUE(rk_init_image(&image, 1, 1, 1));
        testing::internal::CaptureStdout();
        EXPECT_FALSE(rk_ensure_image(&image, size.width, size.height, size.channels));
        EXPECT_EQ("rk_init_image(...) - Unable to allocate memory for new buffer.\n", testing::internal::GetCapturedStdout());
        EXPECT_FALSE(image.data || image.width || image.height || image.channels || image.size);
    }
}

TEST(RkImage, CopiesReuseABufferOfAsManyBytes)
{
    auto const source = counted<1>(4, 3);
    rk_image target = {};
    ASSERT_TRUE(rk_init_image(&target, 1, 3, 4));
    unsigned char const* const buffer = target.data;
    ASSERT_TRUE(rk_copy_image(source.getImage(), &target));
    EXPECT_EQ(buffer, target.data);
    EXPECT_EQ(4u, target.width);
    EXPECT_EQ(1u, target.channels);
    EXPECT_EQ(bytesOf(*source.getImage()), bytesOf(target));
    rk_image const empty = {};
    ASSERT_TRUE(rk_copy_image(&empty, &target));
    EXPECT_FALSE(target.data || target.width || target.size);
}

TEST(RkImage, PartsAreTakenOnlyWhereTheyFit)
{
    auto const source = counted<3>(3, 2); // pixel (x, y) begins with 1 + 3 * (x + 3 * y)
    struct {
        char const* why;
        uint32_t x, y, width, height;
        bool fits;
    } const cases[] = {
        {"touches right and bottom", 1, 1, 2, 1, true},
        {"one column beyond", 2, 0, 2, 1, false},
        {"one row beyond", 0, 1, 1, 2, false},
        {"a sum that wraps to 1", 4294967295u, 0, 2, 1, false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        rkil::FlatImage<3> part;
        part.resize(c.width, c.height, 99);
        EXPECT_EQ(c.fits, rk_crop_image(source.getImage(), c.x, c.y, part.getImage()) != 0);
        EXPECT_EQ(c.fits ? 13 : 99, part.getImage()->data[0]);

        rkil::FlatImage<3> canvas(source);
        part.setAll(77);
        EXPECT_EQ(c.fits, rk_paste_image(part.getImage(), c.x, c.y, canvas.getImage()) != 0);
        EXPECT_EQ(c.fits ? 6 : 0, std::count(canvas.getImage()->data, canvas.getImage()->data + 18, 77));

        rkil::FlatImage<3> same; // gets the size of the source when the region fits, and zeros around it
        rk_bbox const region = {c.x, c.y, c.width, c.height};
        EXPECT_EQ(c.fits, rk_copy_image_roi(source.getImage(), &region, same.getImage()) != 0);
        if (c.fits)
            EXPECT_EQ((std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 13, 14, 15, 16, 17, 18}), bytesOf(*same.getImage()));
        else
            EXPECT_TRUE(same.empty());
    }
}

TEST(RkImage, BorderIsFilledOnAllSidesAndNowhereElse)
{
    Picture thick({".......", ".......", ".......", ".......", "......."});
    ASSERT_TRUE(rk_fill_border(&thick.image(), 2, 255));
    EXPECT_EQ((Rows{"#######", "#######", "##...##", "#######", "#######"}), rowsOf(thick.image()));
    EXPECT_FALSE(rk_fill_border(&thick.image(), 3, 0));           // 6 of 5 rows
    EXPECT_FALSE(rk_fill_border(&thick.image(), 0x80000001u, 0)); // twice this wraps to 2
}

TEST(RkImage, GrowsAndScales)
{
    rkil::FlatImage<3> grown;
    ASSERT_TRUE(rk_grow_image(counted<3>(1, 1).getImage(), grown.getImage()));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3}), bytesOf(*grown.getImage()));

    // 5 columns to 3: factor 1.6667, so columns 0, 1 (1.67) and 3 (3.33); 3 rows to 4: factor 0.75, rows 0, 0, 1, 2.
    rkil::FlatImage<1> scaled;
    scaled.resize(3, 4);
    ASSERT_TRUE(rk_scale_image(counted<1>(5, 3).getImage(), scaled.getImage())); // 1..5, 6..10, 11..15
    EXPECT_EQ((std::vector<int>{1, 2, 4, 1, 2, 4, 6, 7, 9, 11, 12, 14}), bytesOf(*scaled.getImage()));
}

TEST(RkImage, ChannelsAreTakenAddedAndReversed)
{
    auto const colour = counted<4>(2, 1); // 1 2 3 4, 5 6 7 8
    rkil::FlatImage<1> channel;
    ASSERT_TRUE(rk_extract_channel(colour.getImage(), channel.getImage(), 2, 3));
    EXPECT_EQ((std::vector<int>{0, 7}), bytesOf(*channel.getImage())) << "3 is not above 3";

    rkil::FlatImage<4> target(colour);
    ASSERT_TRUE(rk_add_alpha(channel.getImage(), target.getImage()));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 0, 5, 6, 7, 7}), bytesOf(*target.getImage()));
    channel.resize(1, 2);
    EXPECT_FALSE(rk_add_alpha(channel.getImage(), target.getImage())) << "as many pixels, another shape";

    ASSERT_TRUE(rk_inflate_image(counted<3>(2, 1).getImage(), target.getImage()));
    EXPECT_EQ((std::vector<int>{3, 2, 1, 0, 6, 5, 4, 0}), bytesOf(*target.getImage()));
}
