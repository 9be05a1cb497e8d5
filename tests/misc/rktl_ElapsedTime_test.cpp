#include <gtest/gtest.h>

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "support/bytes.h"

#include <cmath>
#include <limits>

using rktl::ElapsedTime;

namespace {

constexpr int64_t MAX64 = std::numeric_limits<int64_t>::max();
constexpr int64_t MIN64 = std::numeric_limits<int64_t>::min();

} // namespace

TEST(ElapsedTime, RoundsHalvesAwayFromZeroAndStaysInRange)
{
    struct {
        char const* why;
        ElapsedTime span;
        int64_t milliseconds;
    } const cases[] = {
        {"a negative half", ElapsedTime::fromMilliseconds(-0.5), -1},
        {"negative microseconds", ElapsedTime::roundFromMicroseconds(-1500), -2},
        {"nanoseconds", ElapsedTime::roundFromNanoseconds(2500000), 3},
        {"a factor", ElapsedTime(3) * 0.5, 2},
        {"a divisor", ElapsedTime(-5) / 2.0, -3},
        {"from 2^63 on", ElapsedTime::fromDays(1e300), MAX64},
        {"-2^63 and below", ElapsedTime(MIN64) * 2.0, MIN64},
        {"divided by nothing", ElapsedTime(1) / 0.0, MAX64},
        {"nothing divided by nothing", ElapsedTime() / 0.0, 0},
        {"no number", ElapsedTime::fromSeconds(std::nan("")), 0},
        {"the smallest has no opposite", ElapsedTime(MIN64).abs(), MIN64},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.milliseconds, c.span.toMilliseconds()) << c.why;
}

TEST(ElapsedTime, ReadsForPeopleExactlyOrInTheUnitThatReadsBest)
{
    struct {
        int64_t milliseconds;
        char const* exact;
        char const* approximate;
    } const cases[] = {
        {0, "0 milliseconds", "0 milliseconds"}, {1, "1 millisecond", "1 millisecond"},
        {1500, "1500 milliseconds", "1500 milliseconds"}, // not more than 1.5 seconds
        {1501, "1501 milliseconds", "2 seconds"}, {60000, "1 minute", "60 seconds"}, {100000, "100 seconds", "2 minutes"},
        {3600000, "1 hour", "60 minutes"}, {172800000, "2 days", "2 days"}, {-2000, "-2 seconds", "-2000 milliseconds"},
        {2147483648000, "2147483647 seconds", "24855 days"}, // 24855.13
        {3000000001, "2147483647 milliseconds", "35 days"},  // 34.7
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.exact, ElapsedTime(c.milliseconds).toHumanString(false));
        EXPECT_EQ(c.approximate, ElapsedTime(c.milliseconds).toHumanString(true));
    }
}

TEST(ElapsedTime, TimeStringDropsWhatDoesNotFit)
{
    ElapsedTime const span(3600000 + 2 * 60000 + 5 * 1000 + 4);
    EXPECT_EQ("01:02:05.004", span.toTimeString(4));
    EXPECT_EQ("05.004", span.toTimeString(2));
    EXPECT_EQ("25:00:00.000", ElapsedTime::fromHours(25).toTimeString(9));
}

TEST(ElapsedTime, WholeUnitsAreCutTowardsZero)
{
    ElapsedTime const span(-90061999);
    EXPECT_EQ(-1, span.toInteger("day"));
    EXPECT_EQ(-25, span.toInteger("hour"));
    EXPECT_EQ(-90061, span.toInteger("second"));
    EXPECT_EQ(-90061999, span.toInteger("days")) << "only the singular is a unit here";
    EXPECT_EQ(2147483647, ElapsedTime(MAX64).toInteger("hour"));
}

TEST(ElapsedTime, XmlAndBinaryFormsReadBack)
{
    EXPECT_EQ("<wait unit=\"millisecond\">1500</wait>", ElapsedTime(1500).toXML("wait"));
    EXPECT_EQ("<wait unit=\"second\">1.501</wait>", ElapsedTime(1501).toXML("wait"));
    // 20.57611666 minutes, with six significant digits
    EXPECT_EQ("<w unit=\"minute\">20.5761</w>", ElapsedTime(1234567).toXML("w"));

    ElapsedTime span(42);
    EXPECT_TRUE(span.fromXML("<x unit=\"Minutes\"> 1.5</x>"));
    EXPECT_EQ(90000, span.toMilliseconds());
    EXPECT_TRUE(span.fromXML("<x>5</x>"));
    EXPECT_EQ(0, span.toMilliseconds()) << "no unit is an unknown unit";

    support::Bytes const bytes = support::hex("fe ff ff ff ff ff ff ff");
    EXPECT_EQ(bytes, support::toBin(ElapsedTime(-2)));
    support::expectEveryPrefixThrows<ElapsedTime>(bytes);
    EXPECT_EQ(8u, support::fromBin(span, bytes));
    EXPECT_EQ(ElapsedTime(-2), span);
}
