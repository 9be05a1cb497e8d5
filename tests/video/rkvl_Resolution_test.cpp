#include <gtest/gtest.h>

#include "support/bytes.h"
#include "video/rkvl_Resolution.h"

using rkvl::Resolution;

TEST(Resolution, ReadsSizesAndNames)
{
    struct {
        char const* text;
        bool taken;
        int width;
        int height;
        char const* name;
    } const cases[] = {
        {"720p", true, 1280, 720, "720p"},
        {"cif", true, 352, 288, "CIF"},
        {"4cif", true, 704, 576, "4CIF"}, // begins with a number, but is no size
        {"1920x1080", true, 1920, 1080, "1080p"},
        {" 640 x 480 and more", true, 640, 480, "640x480"},
        {"99999999999x1", true, 2147483647, 1, "2147483647x1"},
        {"640x", false, 1, 2, "1x2"},
        {"640X480", false, 1, 2, "1x2"},
        {"", false, 1, 2, "1x2"},
    };
    for (auto const& c : cases) {
        Resolution size(1, 2);
        EXPECT_EQ(c.taken, size.fromString(c.text)) << c.text;
        EXPECT_EQ(Resolution(c.width, c.height), size) << c.text;
        EXPECT_EQ(c.name, size.toNameString());
    }
}

TEST(Resolution, ScalesInsideABound)
{
    struct {
        char const* why;
        Resolution size;
        Resolution bound;
        Resolution want;
    } const cases[] = {
        {"wider than the bound", {1920, 1080}, {640, 640}, {640, 360}},
        {"higher than the bound", {1080, 1920}, {640, 640}, {360, 640}},
        {"grows", {320, 240}, {1000, 600}, {800, 600}},
        {"rounded", {640, 360}, {100, 100}, {100, 56}}, // 56.25
        {"no bound", {640, 360}, {0, 100}, {640, 360}},
        {"no height of its own", {640, 0}, {100, 100}, {100, 0}},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.want, c.size.scale(c.bound)) << c.why << ": " << c.size.scale(c.bound).toNameString();
}

TEST(Resolution, HasABinaryFormAndNoXml)
{
    support::Bytes const bytes = support::hex("80020000 e0010000");
    EXPECT_EQ(bytes, support::toBin(Resolution(640, 480)));
    support::expectEveryPrefixThrows<Resolution>(bytes);
}
