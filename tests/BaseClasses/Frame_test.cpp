#include <gtest/gtest.h>

#include "BaseClasses/Frame.h"
#include "image/rkil_FlatImage.h"
#include "misc/rktl_url.h"
#include "support/bytes.h"
#include "support/moments.h"
#include "video/rkvl_Resolution.h"

namespace {

using rktl::String;

rktl::url const origin(String("a://b"));

Frame frameAt(int64_t milliseconds)
{
    Frame frame;
    frame.setTimePosition(at(milliseconds), rktl::ElapsedTime(milliseconds));
    return frame;
}

rkil::FlatImage<1> gray(unsigned int width, unsigned int height)
{
    rkil::FlatImage<1> image;
    image.resize(width, height);
    std::fill_n(image.getImage()->data, image.getImage()->size, static_cast<unsigned char>(9));
    return image;
}

TEST(Frame, IsTheSameByTimeAndOrigin)
{
    Frame a = frameAt(1500);
    Frame b = frameAt(1500);
    b.setAttribute("k", "v");
    b.getObjects()[1] = Object();
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a < b);
    b.setOrigin(origin);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b < frameAt(1501)); // time comes before origin
}

TEST(Frame, KnowsItsImagesByNameAndForm)
{
    Frame frame;
    frame.setImage("i", gray(3, 2), 3);
    EXPECT_TRUE(frame.isImageSet("i", 2 | 4)); // any of them
    EXPECT_FALSE(frame.isImageSet("i", 4 | 8));
    frame.clearImage("i");
    EXPECT_FALSE(frame.isImageSet("i", 2));
    EXPECT_TRUE(frame.hasImage("i"));
    frame.clearImages();
    EXPECT_EQ("Frame::getImage() - image type not set", support::messageOf([&] { frame.getMultiImage("i"); }));
}

TEST(Frame, WireFormCarriesObjectsAndTheNamedImagesOnly)
{
    Frame frame = frameAt(1002);
    frame.setFlags(0x0101);
    frame.setAttribute("k", "v");
    frame.setImage("there", gray(1, 1), 2);
    frame.setImage("unnamed", gray(2, 2), 2);
    frame.getObjects()[7] = Object("Static", rktl::ElapsedTime(1));
    frame.setImageNames({"there", "missing"});
    support::Bytes const time = support::toBin(at(1002));
    support::Bytes const bytes = support::toBin(frame);
    support::Bytes want = time;
    for (unsigned char const byte : support::hex("ea03000000000000 01010000 01000000 01000000 6b 00 01000000 76 00 00"))
        want.push_back(byte); // position 1002, flags, attributes, no objects
    for (unsigned char const byte : support::toBin(frame.getImageNames()))
        want.push_back(byte);
    // One image: its name, gray, 1 channel, 1 x 1, its pixel.
    for (unsigned char const byte : support::hex("01000000 05000000 7468657265 00 02000000 01 01000000 01000000 09"))
        want.push_back(byte);
    EXPECT_EQ(want, bytes);

    frame.setHasObjects(true);
    support::Bytes const whole = support::toBin(frame);
    Frame read = frameAt(1);
    read.setImage("old", gray(1, 1), 2);
    EXPECT_EQ(whole.size(), support::fromBin(read, whole));
    EXPECT_EQ(whole, support::toBin(read));
    EXPECT_EQ("Static", read.getObject(7)->getType());
    EXPECT_FALSE(read.hasImage("old"));
    support::expectEveryPrefixThrows<Frame>(whole);
}

} // namespace
