#include <gtest/gtest.h>

#include "image/rkil_MultiImage.h"
#include "misc/rktl_String.h"
#include "support/bytes.h"

#include <vector>

using rkil::MultiImage;
using support::hex;
using support::messageOf;
using Bytes = std::vector<unsigned char>;

namespace {

char const* const noForm = "MultiImage::JPEG, Flat Gray or Flat RGB type not set";

/// One pixel of four channels: gray 11 * 10 + 59 * 20 + 30 * 30 = 2190 percent, 21.
unsigned char colourPixel[] = {10, 20, 30, 99};
unsigned char grayPixels[] = {5, 6};
rk_image const colourView = {colourPixel, 1, 1, 4, 4};
rk_image const grayView = {grayPixels, 2, 1, 1, 2};

template <unsigned int N> Bytes bytesOf(rkil::FlatImage<N> const& image)
{
    return {image.getImage()->data, image.getImage()->data + image.getImage()->size};
}

rkil::ImageJPEG const& jpegOf(MultiImage const& image)
{
    return image;
}

rkil::ImageJPEG someJPEG()
{
    unsigned char const bytes[] = {0xff, 0xd8, 0xff};
    rkil::ImageJPEG jpeg;
    jpeg.setData(bytes, 3);
    return jpeg;
}

} // namespace

TEST(MultiImage, DeclaredFormsAreMadeFromWhicheverArrives)
{
    MultiImage image(1 | 2 | 8);
    image = colourView;
    EXPECT_EQ((Bytes{10, 20, 30, 99}), bytesOf(image.getFlatColour()));
    EXPECT_EQ((Bytes{21}), bytesOf(image.getFlatGray()));
    EXPECT_EQ(99, bytesOf(image.getFlatLABA())[3]);
    image = grayView;
    EXPECT_EQ((Bytes{5, 5, 5, 255, 6, 6, 6, 255}), bytesOf(image.getFlatColour()));
    EXPECT_EQ((Bytes{5, 6}), bytesOf(image.getFlatGray()));

    image = rk_image{};
    EXPECT_TRUE(image.empty());
}

TEST(MultiImage, FormsLeftFromAnEarlierPictureAreNotShown)
{
    MultiImage image(1 | 2);
    image = grayView;
    image.setTypes(1);
    image = colourView;
    image.setTypes(1 | 2); // declared again, but the gray buffer shows the picture before
    EXPECT_EQ("MultiImage::Flat Gray image not set.", messageOf([&] { image.getFlatGray(); }));
    image.addType(2);
    EXPECT_EQ((Bytes{21}), bytesOf(image.getFlatGray()));
}

TEST(MultiImage, AddTypeDerivesFromColourThenGray)
{
    MultiImage image(1);
    EXPECT_EQ(noForm, messageOf([&] { image.addType(2); })) << "no picture";
    image = colourView;
    image.addType(2 | 8);
    EXPECT_EQ(11u, image.getTypes());
    EXPECT_EQ((Bytes{21}), bytesOf(image.getFlatGray()));
    EXPECT_EQ(99, bytesOf(image.getFlatLABA())[3]) << "from colour, with its fourth byte";

    MultiImage gray(2);
    gray = grayView;
    gray.addType(1 | 8 | 4);
    EXPECT_EQ((Bytes{5, 5, 5, 255, 6, 6, 6, 255}), bytesOf(gray.getFlatColour()));
    EXPECT_EQ(0, bytesOf(gray.getFlatLABA())[1]) << "from gray, whose a and b are 0";
    EXPECT_EQ(15u, gray.getTypes());
}

TEST(MultiImage, CameraFrameBringsItsOwnGray)
{
    MultiImage image(1 | 2);
    image.setBGRY(colourView);
    EXPECT_EQ((Bytes{99}), bytesOf(image.getFlatGray())) << "byte 3, not the weights";
    EXPECT_EQ((Bytes{10, 20, 30, 99}), bytesOf(image.getFlatColour()));
    rk_image const noData = {nullptr, 3, 2, 4, 24};
    image.setBGRY(noData);
    EXPECT_TRUE(image.empty());
}

TEST(MultiImage, SwappedBuffersAreNotCopied)
{
    MultiImage image(2);
    image = grayView;
    rkil::FlatImage<1> other;
    other.resize(3, 1, 8);
    unsigned char const* const mine = image.getFlatGray().getImage()->data;
    unsigned char const* const yours = other.getImage()->data;
    image.swapData(*other.getImage());
    EXPECT_EQ(yours, image.getFlatGray().getImage()->data);
    EXPECT_EQ(mine, other.getImage()->data);
    rkil::FlatImage<4> colour;
    colour.resize(1, 1, 10);
    EXPECT_EQ("MultiImage::swapData(rk_image) - a color image can only be swapped for another color image",
        messageOf([&] { image.swapData(*colour.getImage()); }));
    image.setTypes(1 | 2);
    image.swapData(*colour.getImage());
    EXPECT_EQ((Bytes{10}), bytesOf(image.getFlatGray())) << "the other form follows";
}

TEST(MultiImage, TakesThePictureOfAnotherIntoItsOwnForms)
{
    MultiImage gray(2), both(3), none(8);
    gray = grayView;
    both = gray;
    EXPECT_EQ(3u, both.getTypes());
    EXPECT_EQ((Bytes{5, 5, 5, 255, 6, 6, 6, 255}), bytesOf(both.getFlatColour()));
    both = colourView;
    static_cast<rkil::ImageBase&>(gray).clear();
    gray = static_cast<rkil::ImageBase const&>(both);
    EXPECT_EQ((Bytes{21}), bytesOf(gray.getFlatGray()));
    both.setTypes(2);
    both.setFrom(gray);
    EXPECT_EQ(nullptr, both.getForm(MultiImage::flatColour));
    EXPECT_EQ(1u, both.getWidth());
    EXPECT_EQ(noForm, messageOf([&] { none = both; }));

    rkil::Image<rkil::PixelRGB> pixels(1, 1);
    pixels.at(0, 0) = {30, 20, 10};
    gray = pixels;
    EXPECT_EQ((Bytes{21}), bytesOf(gray.getFlatGray()));
    MultiImage const copy(gray); // construction copies the set of forms as well
    EXPECT_EQ(2u, copy.getTypes());
    EXPECT_EQ((Bytes{21}), bytesOf(copy.getFlatGray()));

    MultiImage grown(1);
    copy.grow(grown);
    EXPECT_EQ((Bytes{21, 21, 21, 21}), bytesOf(grown.getFlatGray()));
    EXPECT_EQ(2u, grown.getWidth());
}

TEST(MultiImage, CompressedFormIsHeldButNeverMade)
{
    MultiImage image(4 | 1);
    image = colourView;
    EXPECT_EQ(0u, jpegOf(image).getSize());
    EXPECT_EQ(hex("04000000 00000000"), support::toBin(image)) << "the code of the compressed form, and nothing in it";
    image = someJPEG();
    EXPECT_EQ(3u, jpegOf(image).getSize());
    EXPECT_EQ(nullptr, image.getForm(MultiImage::flatColour)) << "the old picture is gone";
    image = colourView;
    EXPECT_EQ(0u, jpegOf(image).getSize()) << "it would show the picture before";
    MultiImage colour(1);
    colour = colourView;
    colour = someJPEG();
    EXPECT_EQ((Bytes{10, 20, 30, 99}), bytesOf(colour.getFlatColour())) << "nobody can decode it";
}

TEST(MultiImage, BinaryFormOfEachForm)
{
    MultiImage colour(1 | 2), gray(2), jpeg(4);
    colour = colourView;
    gray = grayView;
    jpeg = someJPEG();
    auto const colourBytes = hex("01000000 04 01000000 01000000 0a141e63");
    auto const grayBytes = hex("02000000 01 02000000 01000000 0506");
    auto const jpegBytes = hex("04000000 03000000 ffd8ff");
    EXPECT_EQ(colourBytes, support::toBin(colour));
    EXPECT_EQ(grayBytes, support::toBin(gray));
    EXPECT_EQ(jpegBytes, support::toBin(jpeg));
    EXPECT_EQ(hex("01000000 04 00000000 00000000"), support::toBin(MultiImage(1))) << "declared, no picture";
    for (auto const& bytes : {colourBytes, grayBytes, jpegBytes}) {
        MultiImage read(1);
        EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
        EXPECT_EQ(bytes, support::toBin(read));
        EXPECT_EQ(bytes[0], read.getTypes());
        support::expectEveryPrefixThrows<MultiImage>(bytes);
    }
}

TEST(MultiImage, BytesThatAreNoPictureAreRefused)
{
    char const* const bad[] = {
        "00000000 04 01000000 01000000 0a141e63", // no form
        "08000000 04 01000000 01000000 0a141e63",
        "03000000 04 01000000 01000000 0a141e63", // two at once
        "01000000 03 01000000 01000000 0a141e",   // three channels
        "01000000 04 00000040 01000000 0a141e63", // 2^30 * 4 wraps to 0
        "01000000 ff ffffffff ffffffff 0a141e63",
        "04000000 04000000 ffd8ff", // a byte short
    };
    for (char const* const bytes : bad) {
        MultiImage image(2);
        image = grayView;
        EXPECT_THROW(support::fromBin(image, hex(bytes)), rktl::Exception) << bytes;
        EXPECT_EQ(hex("02000000 01 02000000 01000000 0506"), support::toBin(image)) << "lost by " << bytes;
    }
}
