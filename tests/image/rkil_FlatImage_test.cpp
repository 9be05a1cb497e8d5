#include <gtest/gtest.h>

#include "image/rkil_FlatImage.h"
#include "misc/rktl_String.h"
#include "support/bytes.h"

using support::hex;

TEST(FlatImage, BinaryFormTellsItsChannels)
{
    rkil::FlatImage<3> image;
    image.resize(1, 2, 5);
    image.getImage()->data[5] = 0xff;
    EXPECT_EQ(hex("03 01000000 02000000 06000000 0505050505ff"), support::toBin(image));

    rkil::FlatImage<3> read;
    EXPECT_EQ(19u, support::fromBin(read, support::toBin(image)));
    EXPECT_EQ(support::toBin(image), support::toBin(read));
    support::expectEveryPrefixThrows<rkil::FlatImage<3>>(support::toBin(image));

    rkil::FlatImage<4> other;
    EXPECT_EQ("rkil::FlatImage::fromBin(...) - image channels do not match.",
        support::messageOf([&] { support::fromBin(other, support::toBin(image)); }));
}

TEST(FlatImage, SizesThatDoNotFitTogetherAreRefusedAndLoseNothing)
{
    char const* const bad[] = {
        "01 ffffffff ffffffff 01000000 00", // width times height beyond 32 bits
        "01 00000100 00000100 00000000",    // 2^32 wraps to the size given
        "01 02000000 01000000 01000000 07", // size smaller than the picture
        "01 01000000 01000000 02000000 0707",
    };
    rkil::FlatImage<1> image;
    image.resize(2, 2, 9);
    auto const before = support::toBin(image);
    for (char const* const bytes : bad) {
        EXPECT_EQ("rksl::Serializable::fromBin() - Failed!", support::thrownBy([&] { support::fromBin(image, hex(bytes)); }))
            << bytes;
        EXPECT_EQ(before, support::toBin(image)) << bytes;
    }
}
