#include <gtest/gtest.h>

#include "math/rkml_Histogram.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"

#include <algorithm>
#include <memory>

using rkml::Histogram;

namespace {

Histogram withBins(std::vector<uint32_t> const& bins)
{
    Histogram histogram(static_cast<uint32_t>(bins.size()));
    for (uint32_t bin = 0; bin < bins.size(); ++bin)
        histogram.incrementBin(bin, bins[bin]);
    return histogram;
}

std::vector<uint32_t> binsOf(Histogram const& histogram)
{
    std::vector<uint32_t> bins;
    for (uint32_t bin = 0; bin < histogram.getBinCount(); ++bin)
        bins.push_back(histogram.getBinValue(bin));
    return bins;
}

std::vector<unsigned char> stored(Histogram const& histogram)
{
    std::vector<unsigned char> bytes(histogram.getBinLength());
    EXPECT_EQ(bytes.size(), histogram.toBin(bytes.data()));
    return bytes;
}

} // namespace

TEST(RkmlHistogram, AverageRoundsBothPartsToTheNearest)
{
    Histogram histogram = withBins({10, 3, 0, 1});
    histogram.average(withBins({0, 3, 10, 2}), 0.25f);
    // 7.5 -> 8, 2.25 + 0.75 -> 2 + 1, 2.5 -> 3, 0.75 + 0.5 -> 1 + 1
    EXPECT_EQ((std::vector<uint32_t>{8, 3, 3, 2}), binsOf(histogram));
    EXPECT_EQ(16u, histogram.getTotal());

    Histogram full = withBins({UINT32_MAX}); // as a float 2^32, which no word holds
    full.average(Histogram(1), 0.0f);
    EXPECT_EQ((std::vector<uint32_t>{UINT32_MAX}), binsOf(full));
}

TEST(RkmlHistogram, StoresNonEmptyBinsOnly)
{
    Histogram histogram(600);
    histogram.incrementBin(2, 7);
    histogram.incrementBin(513, 0x01020304);
    std::vector<unsigned char> const bytes = {
        0x58, 2, 0, 0, 2, 0, 0, 0, 2, 0, 7, 0, 0, 0, 1, 2, 4, 3, 2, 1}; // 600 = 0x258, 513 = 0x201
    EXPECT_EQ(bytes, stored(histogram));
    Histogram back(3);
    back.incrementBin(1, 5);
    EXPECT_EQ(bytes.size(), back.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())));
    EXPECT_EQ(binsOf(histogram), binsOf(back));
    EXPECT_EQ(0x0102030Bu, back.getTotal());
    EXPECT_EQ((std::vector<unsigned char>{0, 2, 0, 0, 0, 0, 0, 0}), stored(Histogram(512)));

    // Cut off anywhere, in a block of just that size, it is refused.
    for (unsigned int size = 0; size < bytes.size(); ++size) {
        std::unique_ptr<unsigned char[]> block(new unsigned char[size]);
        std::copy_n(bytes.begin(), size, block.get());
        EXPECT_THROW(back.fromBin(block.get(), size), rktl::Exception) << size;
    }
}

TEST(RkmlHistogram, RefusesBytesThatAreNoHistogram)
{
    struct {
        char const* why;
        std::vector<unsigned char> bytes;
    } const cases[] = {
        {"four billion bins", {255, 255, 255, 255, 0, 0, 0, 0}},
        {"one bin more than indices reach", {1, 0, 1, 0, 0, 0, 0, 0}},
        {"more entries than bytes", {4, 0, 0, 0, 255, 255, 255, 255, 0, 0, 1, 0, 0, 0}},
        {"more entries than bins", {1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0}},
        {"index that is no bin", {2, 0, 0, 0, 1, 0, 0, 0, 2, 0, 1, 0, 0, 0}},
        {"same index twice", {3, 0, 0, 0, 2, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0}},
    };
    Histogram histogram = withBins({1, 2});
    for (auto const& c : cases) {
        EXPECT_THROW(histogram.fromBin(c.bytes.data(), static_cast<unsigned int>(c.bytes.size())), rktl::Exception) << c.why;
        EXPECT_EQ((std::vector<uint32_t>{1, 2}), binsOf(histogram)) << c.why;
    }
    Histogram const tooMany(65537);
    unsigned char out[8];
    EXPECT_THROW(tooMany.toBin(out), rktl::Exception);
    EXPECT_EQ(8u, stored(Histogram(65536)).size());
}
