#include <gtest/gtest.h>

#include "image/rk_histogram.h"
#include "image/rk_image.h"
#include "math/rk_bbox.h"

#include <initializer_list>
#include <utility>

namespace {

/// counts as {cell, count} pairs, with total.
rk_histogram withCounts(std::initializer_list<std::pair<unsigned int, uint32_t>> counts)
{
    rk_histogram histogram = {};
    for (auto const& [cell, count] : counts) {
        histogram.counts[cell] = count;
        histogram.total += count;
    }
    return histogram;
}

void expectEqual(rk_histogram const& want, rk_histogram const& got)
{
    EXPECT_EQ(want.total, got.total);
    for (unsigned int cell = 0; cell < RK_HISTOGRAM_CELLS; ++cell) {
        EXPECT_EQ(want.counts[cell], got.counts[cell]) << cell;
        EXPECT_EQ(want.sum_x[cell], got.sum_x[cell]) << cell;
        EXPECT_EQ(want.sum_y[cell], got.sum_y[cell]) << cell;
    }
}

/// A view of pixels in blue, green, red and a fourth byte.
rk_image view(std::vector<unsigned char>& bytes, uint32_t width, uint32_t height, uint32_t channels)
{
    return {bytes.data(), width, height, channels, width * height * channels};
}

} // namespace

// A 5 x 3 picture; the box covers columns 1 to 3 of rows 1 and 2. Pixels outside of it are bright, so that a box that is
// off by one shows. The mask has rows of 6 bytes.
class HistogramSet : public ::testing::Test {
protected:
    HistogramSet()
        : pixels(5 * 3 * 4, 255)
        , maskBytes(6 * 3, 255)
    {
        put(1, 1, 200, 0, 0);   // blue: cell 48
        put(2, 1, 16, 16, 16);  // black
        put(3, 1, 17, 0, 0);    // dark blue: cell 0
        put(1, 2, 0, 64, 0);    // green: cell 4
        put(2, 2, 0, 127, 128); // cell 1 << 2 | 2 = 6
        put(3, 2, 40, 40, 40);  // dark: cell 0
        image = view(pixels, 5, 3, 4);
        mask = view(maskBytes, 6, 3, 1);
    }

    void put(unsigned int x, unsigned int y, unsigned char blue, unsigned char green, unsigned char red)
    {
        unsigned char* const pixel = &pixels[4 * (x + 5 * y)];
        pixel[0] = blue;
        pixel[1] = green;
        pixel[2] = red;
    }

    std::vector<unsigned char> pixels, maskBytes;
    rk_image image, mask;
    rk_bbox const box = {1, 1, 3, 2};
    rk_histogram histogram = withCounts({{7, 1000}}); // left over from before
};

TEST_F(HistogramSet, CountsCellsAndPlacesWithinTheBox)
{
    rk_histogram want = withCounts({{48, 1}, {0, 2}, {4, 1}, {6, 1}});
    want.sum_x[0] = 2 + 2;
    want.sum_y[0] = 0 + 1;
    want.sum_x[6] = 1;
    want.sum_y[4] = want.sum_y[6] = 1;
    ASSERT_EQ(1, rk_histogram_set(&histogram, &image, nullptr, &box));
    expectEqual(want, histogram);

    uint32_t x = 9, y = 9;
    EXPECT_EQ(1, rk_histogram_xy(&histogram, 0, &x, &y));
    EXPECT_EQ(2u, x);
    EXPECT_EQ(0u, y); // 1 / 2
    EXPECT_EQ(0, rk_histogram_xy(&histogram, 1, &x, &y));
    EXPECT_EQ(0, rk_histogram_xy(&histogram, 64, &x, &y));
}

TEST_F(HistogramSet, MaskLeavesOutItsZerosAndTheDarkCell)
{
    maskBytes[1 + 6 * 2] = 0; // the green pixel
    rk_histogram want = withCounts({{48, 1}, {6, 1}});
    want.sum_x[6] = want.sum_y[6] = 1;
    ASSERT_EQ(1, rk_histogram_set(&histogram, &image, &mask, &box));
    expectEqual(want, histogram);
}

TEST_F(HistogramSet, RefusesWhatDoesNotFit)
{
    rk_histogram const before = histogram;
    rk_image gray = view(maskBytes, 6, 3, 1);
    EXPECT_EQ(0, rk_histogram_set(&histogram, &gray, nullptr, &box));
    EXPECT_EQ(0, rk_histogram_set(&histogram, &image, &image, &box));
    expectEqual(before, histogram);

    rk_image smallMask = view(maskBytes, 3, 3, 1);
    struct {
        char const* why;
        rk_bbox box;
        rk_image* mask;
    } const cases[] = {
        {"a column too far", {3, 0, 3, 1}, nullptr},
        {"a row too far", {0, 2, 1, 2}, nullptr},
        {"beyond 32 bits", {4, 0, UINT32_MAX, 1}, nullptr},
        {"beyond the mask", {1, 0, 3, 1}, &smallMask},
    };
    for (auto const& c : cases) {
        histogram = before;
        EXPECT_EQ(0, rk_histogram_set(&histogram, &image, c.mask, &c.box)) << c.why;
        expectEqual(rk_histogram{}, histogram);
    }
    histogram = before;
    EXPECT_EQ(0, rk_histogram_set(&histogram, &image, nullptr, nullptr));
    expectEqual(rk_histogram{}, histogram);
    rk_bbox const lastColumn = {4, 0, 1, 3};
    EXPECT_EQ(1, rk_histogram_set(&histogram, &image, nullptr, &lastColumn));
    EXPECT_EQ(3u, histogram.counts[63]);
}

TEST(Histogram, SimilarityIsOneMinusHalfTheChiSquare)
{
    rk_histogram const a = withCounts({{0, 3}, {1, 1}});
    rk_histogram const b = withCounts({{1, 1}, {2, 1}});
    rk_histogram const tripled = withCounts({{0, 9}, {1, 3}});
    rk_histogram const elsewhere = withCounts({{63, 5}});
    rk_histogram const empty = {};
    // 0.75 + 0.25^2 / 0.75 + 0.5 = 4/3. The tolerance covers a few roundings of single precision.
    EXPECT_NEAR(1.0 / 3, rk_histogram_compare(&a, &b), 1e-6);
    EXPECT_EQ(1.0f, rk_histogram_compare(&a, &tripled));
    EXPECT_EQ(0.0f, rk_histogram_compare(&a, &elsewhere));
    EXPECT_EQ(0.0f, rk_histogram_compare(&a, &empty));
}

TEST(Histogram, BlendCutsBothProductsByThemselves)
{
    rk_histogram own = withCounts({{0, 9}, {1, 1}});
    rk_histogram other = withCounts({{0, 9}, {2, 3}});
    own.sum_x[0] = 7;
    other.sum_y[2] = 5;
    rk_histogram want = withCounts({{0, 4 + 4}, {2, 1}});
    want.sum_x[0] = 3;
    want.sum_y[2] = 2;
    ASSERT_EQ(1, rk_histogram_avg(&own, &other, 0.5f));
    expectEqual(want, own);

    rk_histogram single = withCounts({{5, 1}});
    rk_histogram const many = withCounts({{6, 9}});
    ASSERT_EQ(1, rk_histogram_avg(&single, &many, 0.1f)); // 1 * 0.9 and 9 * 0.1 both fall to 0
    expectEqual(rk_histogram{}, single);
    ASSERT_EQ(1, rk_histogram_avg(&single, &many, 0.1f)); // empty by now: the weight plays no part
    expectEqual(many, single);
    rk_histogram const empty = {};
    EXPECT_EQ(0, rk_histogram_avg(&single, &empty, 0.1f));
    expectEqual(many, single);
}
