#include "camera/sources/Scaler.h"

#include <gtest/gtest.h>

using namespace camera;

namespace {

/// A picture of one row, so that its chroma has one row as well.
Picture row(std::vector<uint8_t> luma, std::vector<uint8_t> pairs)
{
    Picture picture;
    picture.resize(uint32_t(luma.size()), 1);
    picture.bytes = std::move(luma);
    picture.bytes.insert(picture.bytes.end(), pairs.begin(), pairs.end());
    return picture;
}

} // namespace

TEST(Scaler, EachPixelIsTheMeanOfTheAreaThatItCovers)
{
    Scaler scaler;
    Picture target;
    // A target pixel covers one and a half source pixels: (2 x 0 + 90) / 3 and (90 + 2 x 30) / 3. Chroma: 2 pairs to 1.
    scaler.scale(row({0, 90, 30}, {10, 100, 21, 201}), target, 2, 1);
    EXPECT_EQ(row({30, 50}, {16, 151}), target); // 15.5 and 150.5 round up

    // Enlarged: the first, half and half, the second. Chroma: 1 pair to 2.
    scaler.scale(row({30, 90}, {10, 100}), target, 3, 1);
    EXPECT_EQ(row({30, 60, 90}, {10, 100, 10, 100}), target);

    Picture square;
    square.resize(4, 2);
    square.bytes = {0, 1, 100, 100, 1, 1, 100, 103, 10, 20, 30, 40};
    scaler.scale(square, target, 2, 1);
    EXPECT_EQ(row({1, 101}, {20, 30}), target); // 3 / 4 rounds to 1, 403 / 4 to 101; chroma (10 + 30) / 2, (20 + 40) / 2
}
