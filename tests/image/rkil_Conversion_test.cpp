#include <gtest/gtest.h>

#include "image/rkil_Conversion.h"
#include "image/rkil_Convert.h"
#include "image/rkil_ImageJPEG.h"
#include "image/rkil_ImagePNG.h"
#include "image/rkil_MultiImage.h"
#include "support/bytes.h"

#include <vector>

using Bytes = std::vector<unsigned char>;

namespace {

/// A row of pixels as a view of bytes.
rk_image row(Bytes& bytes, uint32_t channels)
{
    uint32_t const size = static_cast<uint32_t>(bytes.size());
    return {bytes.data(), size / channels, 1, channels, size};
}

struct Owned : rk_image {
    Owned()
        : rk_image{}
    {
    }
    ~Owned() { rk_free_image(this); }
    Bytes bytes() const { return {data, data + size}; }
};

using Function = bool (*)(rk_image const&, rk_image&);

} // namespace

TEST(Conversion, PixelsWorkedOutByHand)
{
    struct {
        char const* why;
        Function function;
        uint32_t channels;
        Bytes in;
        Bytes out;
    } const cases[] = {
        // (11 * 10 + 59 * 20 + 30 * 30) / 100 = 21.9, with the weights the other way round 18.1
        {"gray of 4", rkil::color2gray, 4, {10, 20, 30, 77, 255, 255, 255, 0}, {21, 255}},
        {"gray of 3", rkil::color2gray, 3, {10, 20, 30, 255, 255, 255}, {18, 255}},
        {"colour of gray", rkil::gray2color, 1, {7, 255}, {7, 7, 7, 255, 255, 255, 255, 255}},
        // Red: 66 * 255 + 128 = 16958 >> 8 = 66; -38 * 255 + 128 = -9562 >> 8 = -38 (down, not to 0); 28688 >> 8 = 112.
        {"YUV of red", rkil::bgr2yuv, 4, {0, 0, 255, 9}, {82, 90, 240, 9}},
        {"HSV of blue: 240 / 360 * 255", rkil::bgr2hsv, 4, {255, 0, 0, 9}, {170, 255, 255, 9}},
        {"a hue of 255 is the full turn", rkil::hsv2bgr, 3, {255, 255, 255}, {0, 0, 255}},
        {"LAB of white and black", rkil::bgr2lab, 4, {255, 255, 255, 9, 0, 0, 0, 8}, {255, 128, 128, 9, 0, 128, 128, 8}},
        // White has a and b 127 on the way back; 128 costs green 1.4 of 255.
        {"white of LAB", rkil::lab2bgr, 4, {255, 127, 127, 9, 0, 127, 127, 8}, {255, 255, 255, 9, 0, 0, 0, 8}},
        {"the offset is 127", rkil::lab2bgr, 3, {255, 128, 127}, {255, 254, 255}},
        // 1 / 255 lies below the kink: 2303.415 / 255 = 9.03; 3 / 255 above: 0.22744 * 295.8 - 40.8 = 26.48.
        {"LAB of gray", rkil::gray2lab, 1, {0, 1, 3, 255}, {0, 0, 0, 255, 9, 0, 0, 255, 26, 0, 0, 255, 255, 0, 0, 255}},
        {"gray of LAB", rkil::lab2gray, 4, {5, 6, 7, 8, 9, 10, 11, 12}, {5, 9}},
    };
    for (auto const& c : cases) {
        Bytes in = c.in;
        Owned out;
        ASSERT_TRUE(c.function(row(in, c.channels), out)) << c.why;
        EXPECT_EQ(c.out, out.bytes()) << c.why;
        if (in.size() == c.out.size()) { // the same layout: also in place
            rk_image self = row(in, c.channels);
            ASSERT_TRUE(c.function(self, self));
            EXPECT_EQ(c.out, in) << c.why << ", in place";
        }
    }
}

TEST(Conversion, LabOfRed)
{
    // Red: Y 0.212671, f 0.59691; X 0.412453 * 1.0521265 = 0.433953, f 0.75707; Z 0.019334 * 0.9184811 = 0.0177579, f 0.26089.
    // L 0.59691 * 295.8 - 40.8 = 135.77, a 0.16016 * 500 + 128 = 208.08, b 0.33602 * 200 + 128 = 195.20.
    Bytes in = {0, 0, 255};
    Owned out;
    ASSERT_TRUE(rkil::bgr2lab(row(in, 3), out));
    EXPECT_EQ((Bytes{136, 208, 195}), out.bytes());
}

TEST(Conversion, PixelImagesThereAndBack)
{
    Bytes bytes = {10, 20, 30, 1, 40, 50, 60, 2, 70, 80, 90, 3, 100, 110, 120, 4};
    rk_image const flat = {bytes.data(), 2, 2, 4, 16};
    rkil::Image<rkil::PixelRGB> pixels;
    ASSERT_TRUE(rkil::inflateColor(flat, pixels));
    EXPECT_EQ(60, pixels.at(1, 0).red);
    EXPECT_EQ(40, pixels.at(1, 0).blue);
    Owned out;
    rkml::BoundingBox<int> const right(1, 0, 1, 2), beyond(1, 0, 2, 2);
    ASSERT_TRUE(rkil::flattenColor(pixels, out, &right));
    EXPECT_EQ((Bytes{40, 50, 60, 255, 100, 110, 120, 255}), out.bytes());
    EXPECT_FALSE(rkil::flattenColor(pixels, out, &beyond));
    ASSERT_TRUE(rkil::color2gray(pixels, out)); // 11, 59, 30 percent: 21.9, 51.9, 81.9, 111.9
    EXPECT_EQ((Bytes{21, 51, 81, 111}), out.bytes());
}

TEST(Convert, RoutesBetweenTheClasses)
{
    rkil::FlatImage<1> gray;
    gray.resize(1, 1, 100);
    rkil::FlatImage<3> rgb; // red, green, blue
    rgb.resize(1, 1);
    rgb.getImage()->data[0] = 10;
    rkil::Image<rkil::PixelRGB> pixels(1, 1);
    pixels.at(0, 0) = {10, 0, 0};
    rkil::Image<rkil::PixelGray> grays(1, 1);
    grays.at(0, 0).gray = 100;
    rkil::MultiImage multi(rkil::MultiImage::flatGray);
    multi = *gray.getImage();

    struct {
        char const* why;
        rkil::ImageBase const& source;
        Bytes colour;
        Bytes gray;
    } const cases[] = {
        {"gray", gray, {100, 100, 100, 255}, {100}},
        {"red, green, blue", rgb, {0, 0, 10, 0}, {3}},
        {"pixels", pixels, {0, 0, 10, 255}, {3}},
        {"gray pixels", grays, {100, 100, 100, 255}, {100}},
        {"several forms", multi, {100, 100, 100, 255}, {100}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        rkil::FlatImage<4> asColour;
        rkil::FlatImage<1> asGray;
        rkil::Image<rkil::PixelRGB> asPixels;
        rkil::Image<rkil::PixelGray> asGrays;
        rkil::ImageBase& anyGray = asGray;
        ASSERT_TRUE(rkil::convert(c.source, asColour) && rkil::convert(c.source, anyGray) && rkil::convert(c.source, asPixels) &&
            rkil::convert(c.source, asGrays));
        EXPECT_EQ(c.colour, Bytes(asColour.getImage()->data, asColour.getImage()->data + 4));
        EXPECT_EQ(c.gray[0], asGray.getImage()->data[0]);
        EXPECT_EQ(c.colour[2], asPixels.at(0, 0).red);
        EXPECT_EQ(c.gray[0], asGrays.at(0, 0).gray);
    }
    rkil::FlatImage<4> target;
    rkil::ImagePNG png;
    EXPECT_FALSE(rkil::convert(rkil::ImageJPEG(), target));
    EXPECT_FALSE(rkil::convert(png, target));
    rk_image const none = {};
    Owned out;
    EXPECT_EQ("rkil::Conversion::bgr2lab( ... ) - NULL src buffer", support::messageOf([&] { rkil::bgr2lab(none, out); }));
    EXPECT_EQ("rkil::Conversion::color2gray( ... ) - input image should be 4 channels",
        support::messageOf([&] { rkil::color2gray(*gray.getImage(), out); }));
    EXPECT_EQ("rkil::Conversion::Conversion not defined.", support::messageOf([&] { rkil::convert(pixels, png); }));
}
