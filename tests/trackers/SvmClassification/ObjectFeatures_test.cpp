#include "trackers/SvmClassification/ObjectFeatures.h"

#include "BaseClasses/Object.h"
#include "image/rk_sobel.h"
#include "math/rk_fast.h"
#include "support/bytes.h"
#include "support/forms.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

rktl::TimeStamp at(int64_t ms)
{
    return rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'700'000'000'000 + ms));
}

/// A picture whose pixels are what value says of their place.
template <class Value> rkil::FlatImage<1> picture(uint32_t width, uint32_t height, Value value)
{
    rkil::FlatImage<1> image;
    image.resize(width, height);
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            image.getImage()->data[y * width + x] = static_cast<unsigned char>(value(x, y));
    return image;
}

rkil::FlatImage<1> plain(uint32_t width, uint32_t height, int value)
{
    return picture(width, height, [value](uint32_t, uint32_t) { return value; });
}

/// The first twelve counters as text; the others have to be 0.
std::string counters(ObjectFeatures const& features)
{
    std::string text;
    for (size_t i = 0; i < features.orientHist.size(); ++i) {
        if (i < 12)
            text += (i ? " " : "") + std::to_string(features.orientHist[i]);
        else
            EXPECT_EQ(0, features.orientHist[i]) << i;
    }
    return text;
}

/// 3 by 3 pixels have one gradient, that of the middle.
std::string directionOf(std::vector<int> const& pixels)
{
    ObjectFeatures features;
    EXPECT_TRUE(features.generateFeatures(picture(3, 3, [&](uint32_t x, uint32_t y) { return pixels[y * 3 + x]; }),
        picture(3, 3, [](uint32_t x, uint32_t y) { return x == 1 && y == 1 ? 1 : 0; })));
    return counters(features);
}

} // namespace

TEST(ObjectFeatures, OnePixelSharesTenBetweenTwoBinsOfItsDirection)
{
    struct {
        char const* why;
        std::vector<int> pixels;
        char const* counters;
    } const cases[] = {
        {"no gradient", {7, 7, 7, 7, 7, 7, 7, 7, 7}, "1 0 0 0 0 0 0 0 0 0 0 0"},
        {"2 * 99 = 198 is weak", {0, 0, 0, 0, 0, 99, 0, 0, 0}, "1 0 0 0 0 0 0 0 0 0 0 0"},
        {"2 * 100 = 200 is strong; dx alone is 90 degrees", {0, 0, 0, 0, 0, 100, 0, 0, 0}, "0 0 0 0 0 0 0 0 0 0 5 5"},
        {"a sign of its own makes no difference", {0, 0, 0, 100, 0, 0, 0, 0, 0}, "0 0 0 0 0 0 0 0 0 0 5 5"},
        {"dy alone is 0 degrees", {0, 100, 0, 0, 0, 0, 0, 0, 0}, "0 5 5 0 0 0 0 0 0 0 0 0"},
        // a = 45 in bin 4, whose centre is 35: r = 10, all of it in the bin behind.
        {"dx = dy = 255", {0, 0, 255, 0, 0, 0, 0, 0, 0}, "0 0 0 0 0 0 10 0 0 0 0 0"},
        // dx = 100 and dy = 200: a ratio of 0.5 is (0.5 * -0.273 + 1.0584) * 0.5 = 0.46095 rad = 26.41 degrees in bin 3, whose
        // centre is 25: r = 1.41, rounded to 1.
        {"half as much dx as dy", {0, 100, 0, 0, 0, 50, 0, 0, 0}, "0 0 0 0 9 1 0 0 0 0 0 0"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.counters, directionOf(c.pixels)) << c.why;
}

TEST(ObjectFeatures, PicturesThatDoNotFitGiveAnEmptyHistogram)
{
    ObjectFeatures features;
    features.orientHist.fill(3);
    EXPECT_FALSE(features.generateFeatures(plain(8, 8, 1), plain(8, 9, 1)));
    EXPECT_EQ("0 0 0 0 0 0 0 0 0 0 0 0", counters(features));
    EXPECT_FALSE(features.generateFeatures({}, {}));
    features.orientHist.fill(3);
    EXPECT_TRUE(features.generateFeatures(plain(2, 9, 1), plain(2, 9, 1))) << "too small for a gradient";
    EXPECT_EQ("0 0 0 0 0 0 0 0 0 0 0 0", counters(features));
}

TEST(ObjectFeatures, OnlyAnObjectWhollyInsideAndAloneInItsBoxHasFeatures)
{
    struct {
        char const* why;
        rkml::BoundingBox<int> box; // in 40 by 30
        bool inside, border;        // what setFeatures says without and with the border allowed
        int pixels;                 // of the clipped box
    } const cases[] = {
        {"2 by 2 grows to 8 by 8", {19, 14, 2, 2}, true, true, 64},
        {"1 by 2 grows to 7 by 8", {19, 14, 1, 2}, false, false, 0},
        {"reaches x = 1", {4, 14, 5, 5}, true, true, 121},
        {"reaches x = 0", {3, 14, 5, 5}, false, true, 121},
        {"is cut at the left: 8 of 11 columns", {0, 14, 5, 5}, false, true, 88},
        {"ends at column 39", {31, 14, 5, 5}, true, true, 121},
        {"ends at column 40", {32, 14, 5, 5}, false, true, 121},
        {"reaches y = 0", {14, 3, 5, 5}, false, true, 121},
        {"ends at row 30", {14, 22, 5, 5}, false, true, 121},
        {"lies outside", {60, 14, 5, 5}, false, false, 0},
    };
    for (auto const& c : cases) {
        for (bool const allowBorder : {false, true}) {
            Object object;
            object.setId(77);
            object.insert({10, 10, 3, 3}, {}, at(0));
            object.insert(c.box, {}, at(1000));
            ObjectFeatures features;
            bool const expected = allowBorder ? c.border : c.inside;
            EXPECT_EQ(expected, features.setFeatures(plain(40, 30, 9), plain(40, 30, 255), object, allowBorder)) << c.why;
            EXPECT_EQ(expected ? c.pixels : 0, features.orientHist[0]) << c.why;
            EXPECT_EQ(expected ? 33 : 0, features.age) << "1000 ms / 30";
            EXPECT_EQ(expected ? 77u : 0u, features.objectId);
        }
    }
    Object merged;
    merged.insert({14, 14, 5, 5}, {rktl::Integer(4)}, at(0));
    EXPECT_FALSE(ObjectFeatures().setFeatures(plain(40, 30, 9), plain(40, 30, 255), merged, true));
    EXPECT_FALSE(ObjectFeatures().setFeatures(plain(40, 30, 9), plain(40, 30, 255), Object(), true)) << "no path";
}

// Against the definition, pixel by pixel, in boxes of a frame: widths about those of a run and of its steps, some of them up to
// the last pixel of the picture.
TEST(ObjectFeatures, TheHistogramIsThatOfAllPixelsOfTheBox)
{
    std::mt19937 random(1);
    auto const gray = picture(150, 40, [&](uint32_t x, uint32_t) { return x < 70 ? random() % 256 : 100 + random() % 60; });
    auto const mask = picture(150, 40, [&](uint32_t, uint32_t y) { return y < 10 || random() % 3 ? 1 + random() % 255 : 0; });
    for (int const n : {2, 3, 9, 58, 60, 61, 68, 125, -2, -5, -13, -60}) {
        int const width = std::abs(n);
        rkml::BoundingBox<int> const box = {n > 0 ? 4 : 147 - width, n > 0 ? 5 : 12, width, 25};
        Object object;
        object.insert(box, {}, at(0));
        auto const crop = [&box](rkil::FlatImage<1> const& image) {
            return picture(uint32_t(box.width + 6), uint32_t(box.height + 6), [&](uint32_t x, uint32_t y) {
                return image.getImage()->data[(y + uint32_t(box.y) - 3) * 150 + x + uint32_t(box.x) - 3];
            });
        };
        auto const grayCrop = crop(gray), maskCrop = crop(mask);
        std::vector<rk_magnitude> gradients(grayCrop.getImage()->size);
        rk_sobel_image(grayCrop.getImage(), gradients.data());
        std::array<int32_t, 48> expected = {};
        for (size_t i = 0; i < gradients.size(); ++i) {
            int const dx = std::abs(gradients[i].dx), dy = std::abs(gradients[i].dy);
            float const a = rk_fast_atan_quad1(uint32_t(dx), uint32_t(dy)) * 57.29578f;
            int const k = int(a + 5) / 10, r = int(std::round(a - float(10 * k - 5)));
            if (!maskCrop.getImage()->data[i])
                continue;
            if (dx + dy <= 199) {
                ++expected[0];
            } else {
                expected[size_t(k) + 1] += 10 - r;
                expected[size_t(k) + 2] += r;
            }
        }
        test::withEachForm([&] {
            ObjectFeatures features;
            ASSERT_TRUE(features.setFeatures(gray, mask, object, true));
            EXPECT_EQ(expected, features.orientHist) << n << ", " << rk_row().name;
        });
    }
}

TEST(ObjectFeatures, BinaryFormHoldsEveryMemberInItsPlace)
{
    support::Bytes bytes(260);
    for (size_t i = 0; i < 65; ++i)
        bytes[4 * i] = static_cast<unsigned char>(i + 100);
    ObjectFeatures features;
    ASSERT_EQ(260u, support::fromBin(features, bytes));
    EXPECT_EQ(bytes, support::toBin(features));
    // Places: eight free slots, reserved, age, 48 counters, spare, objectId, numFeatures, then 59, 60, 61 and last 58.
    for (int32_t const id : {1, 2, 3, 4, 5, 6, 7, 8})
        EXPECT_EQ(99 + id, features.getFeatureVal(id));
    EXPECT_EQ(109, features.getFeatureVal(9));
    EXPECT_EQ(110, features.getFeatureVal(10));
    EXPECT_EQ(157, features.getFeatureVal(57));
    EXPECT_EQ(159u, features.objectId);
    EXPECT_EQ(160, features.numFeatures);
    EXPECT_EQ(161, features.getFeatureVal(59));
    EXPECT_EQ(163, features.getFeatureVal(61));
    EXPECT_EQ(164, features.getFeatureVal(58));
    EXPECT_EQ(-1, features.getFeatureVal(0));
    EXPECT_EQ(-1, features.getFeatureVal(-5));
    EXPECT_EQ("ObjectFeatures::toXML() - not implemented", support::messageOf([&] { features.toXML("a"); }));

    ObjectFeatures const fresh;
    EXPECT_EQ(-1, fresh.getFeatureVal(4));
    EXPECT_EQ(-1, fresh.getFeatureVal(8));
    EXPECT_EQ(-1, fresh.getFeatureVal(58));
    EXPECT_EQ(0, fresh.getFeatureVal(1));
    EXPECT_EXIT(fresh.getFeatureVal(62), testing::ExitedWithCode(1), "");
}

TEST(ObjectFeatures, RecordsThatWouldEndTheProcessAreRefused)
{
    support::Bytes bytes = support::toBin(ObjectFeatures());
    support::expectEveryPrefixThrows<ObjectFeatures>(bytes);
    bytes[240] = 60; // numFeatures: whoever asks for feature 61 of this record would end the process
    ObjectFeatures features;
    EXPECT_NE("", support::thrownBy([&] { support::fromBin(features, bytes); }));
}
