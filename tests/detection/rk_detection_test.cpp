#include <gtest/gtest.h>

#include "detection/rk_detection.h"
#include "support/picture.h"

namespace {

class Detection : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(rk_detection_init(0.5f, 5, 5, rk_kernel_square, 4, &mDetection));
        ASSERT_TRUE(rk_init_image(&mFrame, width, height, 1));
        ASSERT_TRUE(rk_init_image(&mScratch, width, height, 1));
    }
    void TearDown() override
    {
        rk_detection_deinit(&mDetection);
        rk_free_image(&mFrame);
        rk_free_image(&mScratch);
        rk_free_image(&mMotion);
    }

    /// A frame of gray 50 with a square of another gray at column x, row 2.
    void frame(uint32_t x, uint32_t size, unsigned char gray)
    {
        std::fill(mFrame.data, mFrame.data + mFrame.size, static_cast<unsigned char>(50));
        for (uint32_t row = 2; row < 2 + size; ++row)
            for (uint32_t column = x; column < x + size; ++column)
                mFrame.data[row * width + column] = gray;
        ASSERT_TRUE(rk_process(&mFrame, &mScratch, &mMotion, &mDetection));
    }
    void still(int frames)
    {
        for (int i = 0; i < frames; ++i)
            frame(0, 0, 0);
    }
    long moving() const { return std::count(mMotion.data, mMotion.data + mMotion.size, static_cast<unsigned char>(255)); }

    static constexpr uint32_t width = 20, height = 12;
    rk_detection mDetection;
    rk_image mFrame, mScratch, mMotion = {};
};

} // namespace

// With a skip queue of 1 a frame is compared with the one two before, and a mask stays for four comparisons.
// The 5 x 5 square erodes to 3 x 3.
TEST_F(Detection, MotionShowsOnceBothQueuesAreFullAndFadesAfterFourMasks)
{
    still(2);         // these fill the skip queue
    still(4);         // these fill the queue of masks: nothing is popped yet
    frame(3, 5, 150); // differs from two before
    EXPECT_EQ(9, moving());
    still(1); // equals the frame two before
    EXPECT_EQ(9, moving());
    still(1); // differs once more: two before, the square was there
    EXPECT_EQ(9, moving());
    still(3);
    EXPECT_EQ(9, moving()) << "the mask of the third frame is the oldest of four";
    still(1);
    EXPECT_EQ(0, moving());
}

// At a sensitivity of 0.5 the threshold is trunc(0.5 * 65) + 10 = 42, and only a larger difference counts.
TEST_F(Detection, ThresholdIsStrict)
{
    still(6);
    frame(3, 5, 50 + 42);
    EXPECT_EQ(0, moving());
    still(6);
    frame(3, 5, 50 + 43);
    EXPECT_EQ(9, moving());
    mDetection.sensitivity = 1.5f; // out of range: every difference counts
    still(8);
    frame(3, 5, 51);
    EXPECT_EQ(9, moving());
}

TEST_F(Detection, AnotherFrameSizePrimesAgainWithTheSameSettings)
{
    still(6);
    frame(3, 5, 150);
    ASSERT_EQ(9, moving());
    rk_image small;
    ASSERT_TRUE(rk_init_image(&small, 9, 9, 1));
    ASSERT_TRUE(rk_process(&small, &mScratch, &mMotion, &mDetection));
    EXPECT_EQ(9u, mMotion.width);
    EXPECT_EQ(0, moving());
    rk_free_image(&small);
}

TEST_F(Detection, ColourIsADistanceWithoutTheFourthByteAndChannelsMayChange)
{
    still(6);
    rk_image colour;
    ASSERT_TRUE(rk_init_image(&colour, width, height, 4));
    ASSERT_TRUE(rk_process(&colour, &mScratch, &mMotion, &mDetection)) << "the gray frame to compare with gives way";
    for (int i = 0; i < 8; ++i)
        ASSERT_TRUE(rk_process(&colour, &mScratch, &mMotion, &mDetection));
    ASSERT_EQ(0, moving());
    auto const square = [&](unsigned char blue, unsigned char green, unsigned char red, unsigned char fourth) {
        for (uint32_t row = 2; row < 7; ++row)
            for (uint32_t column = 3; column < 8; ++column) {
                unsigned char const pixel[] = {blue, green, red, fourth};
                std::copy(pixel, pixel + 4, colour.data + 4 * (row * width + column));
            }
        ASSERT_TRUE(rk_process(&colour, &mScratch, &mMotion, &mDetection));
    };
    square(0, 0, 0, 255);
    EXPECT_EQ(0, moving()) << "the fourth byte is no colour";
    square(28, 28, 14, 255); // 784 + 784 + 196 = 1764 = 42 squared: not above
    EXPECT_EQ(0, moving());
    square(0, 0, 0, 0);
    for (int i = 0; i < 6; ++i)
        square(0, 0, 0, 0);
    square(28, 28, 15, 0);
    EXPECT_EQ(9, moving());
    rk_free_image(&colour);
}
