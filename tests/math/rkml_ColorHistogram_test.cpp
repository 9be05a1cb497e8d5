#include <gtest/gtest.h>

#include "math/rkml_ColorHistogram.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"

using rkml::ColorHistogram;

TEST(ColorHistogram, NumbersItsBins)
{
    ColorHistogram const even(8, 8, 8);
    EXPECT_EQ(7u, even.getBin(255, 0, 0));
    EXPECT_EQ(448u, even.getBin(0, 0, 255));
    EXPECT_EQ(1u | 3u << 3 | 4u << 6, even.getBin(63, 96, 159)); // 32 to 63, 96 to 127, 128 to 159

    ColorHistogram const uneven(2, 16, 4); // bits 0; 1 to 4; 5 and 6
    EXPECT_EQ(128u, uneven.getBinCount());
    EXPECT_EQ(1u | 15u << 1 | 2u << 5, uneven.getBin(128, 240, 191));
    EXPECT_THROW(ColorHistogram(512, 1, 1), rktl::Exception);
}

TEST(ColorHistogram, StoresItsBitsBehindTheBins)
{
    ColorHistogram histogram(2, 1, 4);
    histogram.addColor(200, 0, 255, 9); // 1 | 3 << 1
    std::vector<unsigned char> bytes(histogram.getBinLength());
    ASSERT_EQ(bytes.size(), histogram.toBin(bytes.data()));
    std::vector<unsigned char> const want = {8, 0, 0, 0, 1, 0, 0, 0, 7, 0, 9, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0};
    EXPECT_EQ(want, bytes);

    ColorHistogram back;
    EXPECT_EQ(want.size(), back.fromBin(want.data(), static_cast<unsigned int>(want.size())));
    EXPECT_EQ(8u, back.getBinCount());
    EXPECT_EQ(1.0f, back.getValue(200, 0, 255));
    for (unsigned int size = 0; size < want.size(); ++size) {
        std::vector<unsigned char> const block(want.begin(), want.begin() + size);
        EXPECT_THROW(back.fromBin(block.data(), size), rktl::Exception) << size;
    }
    for (unsigned char const bits : {3, 9, 33}) { // other than the bins; more than a byte has; more than a word has
        std::vector<unsigned char> wrong = want;
        wrong[14] = bits;
        EXPECT_THROW(back.fromBin(wrong.data(), static_cast<unsigned int>(wrong.size())), rktl::Exception) << int(bits);
    }
    EXPECT_EQ(1.0f, back.getValue(200, 0, 255)) << "a refused form changes nothing";
}
