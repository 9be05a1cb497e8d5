#include "support/Pnm.h"
#include "support/TempFolder.h"
#include "support/text_file.h"

#include <gtest/gtest.h>

namespace {

struct Image : rk_image {
    Image()
        : rk_image{}
    {
    }
    ~Image() { rk_free_image(this); }
};

} // namespace

TEST(Pnm, ColoursGoOutRedFirstAndComeBackWithoutTheFourthByte)
{
    TempFolder folder;
    unsigned char bytes[] = {1, 2, 3, 99, 4, 5, 6, 99};
    tools::writePnm(folder / "a.ppm", rk_image{bytes, 2, 1, 4, 8});
    EXPECT_EQ("P6\n2 1\n255\n\3\2\1\6\5\4", contents(folder / "a.ppm"));
    Image image;
    tools::readPnm(folder / "a.ppm", image);
    EXPECT_EQ(
        (std::vector<unsigned char>{1, 2, 3, 0, 4, 5, 6, 0}), std::vector<unsigned char>(image.data, image.data + image.size));
}

TEST(Pnm, WhatIsNoImageIsRefusedAndChangesNothing)
{
    TempFolder folder;
    put(folder / "good.pgm", "P5 # two pixels\n2\t1\n# deep\n255\n\xfe\n");
    Image image;
    tools::readPnm(folder / "good.pgm", image);
    ASSERT_EQ(2u, image.width);
    ASSERT_EQ(0xfe, image.data[0]);
    ASSERT_EQ('\n', image.data[1]); // only one white space stands between header and pixels
    for (std::string const bytes : {"", "P", "P2\n1 1\n255\n7", "P5\n0 1\n255\n", "P5\n1 1\n65535\nab", "P5\n2 2\n255\nabc",
             "P5\n16777216 2\n255\n", "P5\n99999999999999 1\n255\n", "P5\n-1 1\n255\na", "P6\n1 1\n255\nab", "P5\n# no end"}) {
        SCOPED_TRACE(bytes);
        put(folder / "bad.pgm", bytes);
        EXPECT_THROW(tools::readPnm(folder / "bad.pgm", image), std::runtime_error);
        EXPECT_EQ(2u, image.width);
    }
    EXPECT_THROW(tools::readPnm(folder / "missing.pgm", image), std::runtime_error);
    EXPECT_THROW(tools::writePnm(folder / "none/a.pgm", image), std::runtime_error);
}
