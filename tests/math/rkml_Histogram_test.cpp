#include <gtest/gtest.h>

#include "math/rkml_Histogram.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"

#include <algorithm>
#include <cmath>
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

/// Message behind "path (line): class::", or "nothing thrown".
template <class Action> std::string thrownBy(Action action)
{
    try {
        action();
    } catch (rktl::Exception const& exception) {
        std::string const text = exception.what();
        std::string const source = "libraries/src/math/rkml_Histogram (";
        size_t const end = text.find("): rkml::Histogram::");
        if (text.compare(0, source.size(), source) == 0 && end != std::string::npos)
            return text.substr(end + 20);
        return "elsewhere: " + text;
    }
    return "nothing thrown";
}

} // namespace

TEST(RkmlHistogram, EachFailureHasItsText)
{
    Histogram const none;
    Histogram two(2), three(3);
    Histogram noBins;
    Histogram more = withBins({1, 2});
    struct {
        char const* text;
        std::string got;
    } const cases[] = {
        {"incrementBin(...) - histogram points to no data", thrownBy([&] { noBins.incrementBin(0, 1); })},
        {"incrementBin(...) - invalid bin index ", thrownBy([&] { two.incrementBin(2, 1); })},
        {"incrementBin(...) - histogram points to no data", thrownBy([&] { none.inUsePercent(); })},
        {"at(...) - histogram points to no data", thrownBy([&] { noBins.addValue(0.5f, 1); })},
        {"at(...) - floating pt channel value(s) >= 1 or < 0", thrownBy([&] { two.addValue(1.0f, 1); })},
        {"at(...) - floating pt channel value(s) >= 1 or < 0", thrownBy([&] { two.addValue(-0.001f, 1); })},
        {"at(...) - floating pt channel value(s) >= 1 or < 0", thrownBy([&] { two.addValue(std::nanf(""), 1); })},
        {"getMaxBin(...) - histogram is NULL", thrownBy([&] { none.getMaxBin(); })},
        {"getValue(...) - index out of bounds", thrownBy([&] { two.getBinValue(2); })},
        {"getValue(...) - index out of bounds", thrownBy([&] { two.getValue(2); })},
        {"distanceTo(...) - histogram dimensions are not the same", thrownBy([&] { two.distanceTo(three, Histogram::DistL1); })},
        {"intersectionWith(...) - histogram dimensions are not the same", thrownBy([&] { two.intersectionWith(three); })},
        {"exclude(...) - histogram dimensions are not the same", thrownBy([&] { two.exclude(three); })},
        {"average(...) - histogram points to no data", thrownBy([&] { two.average(none, 0.5f); })},
        {"operator+(...) - histogram dimensions are not the same", thrownBy([&] { two.average(three, 0.5f); })},
        {"average(...) - weight value(s) >= 1 or < 0", thrownBy([&] { two.average(two, 1.0f); })},
        {"average(...) - weight value(s) >= 1 or < 0", thrownBy([&] { two.average(two, -0.1f); })},
        {"operator+(...) - histogram dimensions are not the same", thrownBy([&] { (void)(two + three); })},
        {"operator+=(...) - histogram dimensions are not the same", thrownBy([&] { two += three; })},
        {"operator-(...) - histogram dimensions are not the same", thrownBy([&] { (void)(two - three); })},
        {"operator-=(...) - histogram dimensions are not the same", thrownBy([&] { two -= three; })},
        {"operator-(...) - lhs histogram has less values that rhs", thrownBy([&] { (void)(two - more); })},
        {"operator-(...) - lhs histogram has less values that rhs", thrownBy([&] { two -= more; })},
        {"elsewhere: Histogram::toXML( ) - not implemented", thrownBy([&] { (void)two.toXML(); })},
        {"elsewhere: Histrogram::fromXML( ) - not implemented", thrownBy([&] { two.fromXML("<a/>"); })},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.text, c.got);
}

TEST(RkmlHistogram, ValuesFallIntoTheirBins)
{
    Histogram histogram(4);
    histogram.addValue(0.0f, 1);
    histogram.addValue(0.24999f, 1);
    histogram.addValue(0.25f, 3);
    histogram.addValue(std::nextafter(1.0f, 0.0f), 5);
    EXPECT_EQ((std::vector<uint32_t>{2, 3, 0, 5}), binsOf(histogram));
    EXPECT_FLOAT_EQ(0.3f, histogram.getValue(1));
    EXPECT_FLOAT_EQ(0.75f, histogram.inUsePercent());
    EXPECT_EQ(3u, histogram.getMaxBin());
    histogram.clear();
    EXPECT_EQ((std::vector<uint32_t>{0, 0, 0, 0}), binsOf(histogram));
    EXPECT_EQ(0u, histogram.getTotal());
    EXPECT_EQ(0.0f, histogram.getValue(1));
    EXPECT_EQ(0u, withBins({7}).getMaxBin());
    EXPECT_EQ(1u, withBins({0, 4, 4}).getMaxBin());
}

TEST(RkmlHistogram, WalkingTheValuesFromTheEndGoesFromFullestToEmptiest)
{
    std::multimap<uint32_t, uint32_t> values = {{99, 99}};
    withBins({5, 0, 8, 5}).getBinValues(values);
    std::vector<uint32_t> order;
    std::transform(values.rbegin(), values.rend(), std::back_inserter(order), [](auto const& entry) { return entry.second; });
    EXPECT_EQ((std::vector<uint32_t>{2, 3, 0, 1}), order);
}

TEST(RkmlHistogram, Distances)
{
    Histogram const a = withBins({3, 1, 0}); // shares 0.75 0.25 0
    Histogram const b = withBins({0, 4, 4}); // shares 0 0.5 0.5
    EXPECT_FLOAT_EQ(0.75f, a.distanceTo(b, Histogram::DistL1));
    // 0.5 * (0.75 + 0.0625 / 0.75 + 0.5); the epsilon in the divisors takes less than 2e-7 away.
    EXPECT_NEAR(2.0 / 3, a.distanceTo(b, Histogram::DistChiSquare), 5e-7);
    EXPECT_FLOAT_EQ(0.25f, a.intersectionWith(b));
    EXPECT_EQ(0.0f, a.distanceTo(b, static_cast<Histogram::DistMethod>(2)));
    EXPECT_EQ(0.0f, Histogram().distanceTo(Histogram(), Histogram::DistL1));
    EXPECT_FLOAT_EQ(0.5f, a.distanceTo(Histogram(3), Histogram::DistL1)); // an empty one has shares of 0
}

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

TEST(RkmlHistogram, ExcludeTakesTheCommonPartOut)
{
    Histogram a = withBins({5, 2, 4}), b = withBins({3, 6, 4});
    a.exclude(b);
    EXPECT_EQ((std::vector<uint32_t>{2, 0, 0}), binsOf(a));
    EXPECT_EQ((std::vector<uint32_t>{1, 6, 4}), binsOf(b)); // 3 - 2: what is left in a, not what was there
    EXPECT_EQ(2u, a.getTotal());
    EXPECT_EQ(11u, b.getTotal());
}

TEST(RkmlHistogram, SumAndDifference)
{
    Histogram const a = withBins({5, 2}), b = withBins({1, 3});
    EXPECT_EQ((std::vector<uint32_t>{6, 5}), binsOf(a + b));
    EXPECT_EQ(11u, (a + b).getTotal());
    Histogram difference = a;
    difference -= b;
    EXPECT_EQ((std::vector<uint32_t>{4, UINT32_MAX}), binsOf(difference)); // bins wrap around
    EXPECT_EQ(3u, difference.getTotal());
    Histogram const sameTotal = withBins({0, 7});
    EXPECT_EQ((std::vector<uint32_t>{0, 0}), binsOf(a - sameTotal));
    EXPECT_EQ(0u, (a - sameTotal).getTotal());
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
