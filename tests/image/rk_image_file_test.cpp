#include <gtest/gtest.h>

#include "image/rk_image_file.h"
#include "image/rk_image.h"
#include "image/rkil_FlatImage.h"
#include "support/TempFolder.h"
#include "support/text_file.h"

#include <string>
#include <vector>

namespace {

std::vector<int> bytesOf(rk_image const& image)
{
    return {image.data, image.data + image.size};
}

} // namespace

TEST(RkImageFile, TextOfEachLayout)
{
    TempFolder const folder;
    unsigned char bytes[] = {1, 2, 3, 4, 50, 60, 70, 255, 0, 10, 11, 12};
    struct {
        uint32_t channels;
        char const* name;
        char const* text;
    } const cases[] = {
        {1, "a.pgm", "P2\n3 1\n255\n1\n2\n3\n"},
        {3, "a.ppm", "P3\n3 1\n255\n1 2 3\n4 50 60\n70 255 0\n"},
        {4, "a.ppm", "P3\n3 1\n255\n3 2 1\n70 60 50\n11 10 0\n"},
    };
    for (auto const& c : cases) {
        rk_image const image = {bytes, 3, 1, c.channels, 3 * c.channels};
        ASSERT_TRUE(rk_write_image(&image, (folder / "a").c_str()));
        EXPECT_EQ(c.text, contents(folder / c.name));
    }

    rkil::FlatImage<4> read;
    ASSERT_TRUE(rk_read_image(read.getImage(), (folder / "a.ppm").c_str()));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 0, 50, 60, 70, 0, 0, 10, 11, 0}), bytesOf(*read.getImage()));
}

TEST(RkImageFile, BadFilesAreRefusedAndLoseNothing)
{
    TempFolder const folder;
    std::string const path = folder / "in.pgm";
    rkil::FlatImage<1> image;
    put(path, "P2 2\n\t1 255\r\n7   255");
    ASSERT_TRUE(rk_read_image(image.getImage(), path.c_str())) << "blanks are free";
    ASSERT_EQ((std::vector<int>{7, 255}), bytesOf(*image.getImage()));

    char const* const bad[] = {"", "P", "P2", "P2 1 1", "P5 1 1 255 1", "P1 1 1 255 1", "X2 1 1 255 1", "P2 1 1 254 1",
        "P2 1 1 255", "P2 2 1 255 1", "P2 1 1 255 256", "P2 1 1 255 -1", "P2 1 1 255 x", "P2 -1 -1 255 1", "P3 1 1 255 1 2",
        "P2 4294967295 4294967295 255 1 2 3", "P3 65536 65536 255 1 2 3", "P2 4294967296 1 255 1",
        "P2 99999999999999999999 1 255 1", "P2 1000000000 1 255 1 2 3"}; // the last asks for more memory than its numbers justify
    for (char const* const text : bad) {
        put(path, text);
        EXPECT_FALSE(rk_read_image(image.getImage(), path.c_str())) << text;
        EXPECT_EQ((std::vector<int>{7, 255}), bytesOf(*image.getImage())) << text;
    }
    EXPECT_FALSE(rk_read_image(image.getImage(), (folder / "missing").c_str()));
    EXPECT_FALSE(rk_read_image(image.getImage(), folder.path().c_str()));
}
