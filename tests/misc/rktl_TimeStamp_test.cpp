#include <gtest/gtest.h>

#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"
#include "support/bytes.h"
#include "support/time_zone.h"
#include "support/virtual_clock.h"

#include <limits>

using rktl::ElapsedTime;
using rktl::TimeStamp;

namespace {

constexpr char CENTRAL_EUROPE[] = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr int64_t SUMMER = 1246451400; // 2009-07-01T12:30:00Z, a Wednesday, 14:30 in Central Europe
constexpr int64_t WINTER = 1231977600; // 2009-01-15T00:00:00Z, a Thursday, 01:00 in Central Europe

// What a stamp holds, as "seconds.milliseconds"; "empty" for the default stamp.
std::string held(TimeStamp const& stamp)
{
    if (stamp == TimeStamp())
        return "empty";
    return rktl::String::fromFormat("%d.%03d", stamp.getSeconds(), stamp.getMilliseconds());
}

} // namespace

TEST(TimeStamp, ArithmeticCarriesBothWaysAndStaysInRange)
{
    TimeStamp const last(100, 999, true);
    EXPECT_EQ("101.000", held(last + ElapsedTime(1)));
    EXPECT_EQ(last, last + ElapsedTime(1) - ElapsedTime(1));
    EXPECT_EQ("3.700", held(TimeStamp(5, 200, false) - ElapsedTime(1500)));
    EXPECT_EQ("-2.500", held(TimeStamp() - ElapsedTime(1500)));
    EXPECT_EQ(-1500, (TimeStamp(3, 700, false) - TimeStamp(5, 200, true)).toMilliseconds());
    EXPECT_EQ("-2.999", held(TimeStamp::fromElapsedTime(ElapsedTime(-1001))));

    ElapsedTime const endless(std::numeric_limits<int64_t>::max());
    ElapsedTime const most(std::numeric_limits<int64_t>::min());
    EXPECT_EQ(2147483647, (last + endless).getSeconds());
    EXPECT_EQ(-2147483647 - 1, (last + most).getSeconds());
}

TEST(TimeStamp, OnlyMomentsBehindTheEpochAreSetAndZonesDoNotCompare)
{
    EXPECT_FALSE(TimeStamp().isSet());
    EXPECT_TRUE(TimeStamp(0, 1, false).isSet());
    EXPECT_FALSE(TimeStamp(-1, 999, false).isSet());
    EXPECT_EQ(TimeStamp(5, 1, true), TimeStamp(5, 1, false));
    EXPECT_LT(TimeStamp(5, 999, false), TimeStamp(6, 0, false));
    EXPECT_EQ("9.065", held(TimeStamp(timeval{8, 1065999})));
    EXPECT_EQ("8.000", held(TimeStamp(timeval{8, -5000})));
}

TEST(TimeStamp, BrokenDownFieldsAreLocalEvenForAStampInGmt)
{
    TimeZone const zone(CENTRAL_EUROPE);
    TimeStamp const stamp(2009, 7, 1, 14, 30, 0, 250, true);
    EXPECT_EQ(SUMMER, stamp.getSeconds());
    EXPECT_EQ(12, stamp.getTM().tm_hour);
    EXPECT_EQ(14, stamp.toLocal().getTM().tm_hour);
    EXPECT_FALSE(TimeStamp(2040, 1, 1, 0, 0, 0, 0, false).isSet()) << "beyond 32 bits of seconds";
}

TEST(TimeStamp, OffsetIsThePresentOneInHalfHours)
{
    struct {
        char const* zone;
        int64_t now;
        int64_t minutes;
        char const* iso;
    } const cases[] = {
        {CENTRAL_EUROPE, SUMMER, 120, "2009-07-01T14:30:00.250+02:00"},
        {CENTRAL_EUROPE, WINTER, 60, "2009-07-01T14:30:00.250+01:00"}, // the offset of now, not that of the stamp
        {"NST3:30", SUMMER, -210, "2009-07-01T09:00:00.250-03:30"},
        {"NPT-5:45", SUMMER, 360, "2009-07-01T18:15:00.250+06:00"}, // 11.5 half hours
    };
    for (auto const& c : cases) {
        TimeZone const zone(c.zone);
        VirtualClock const clock(c.now * 1000);
        EXPECT_EQ(c.minutes * 60000, TimeStamp::tzOffset().toMilliseconds()) << c.zone;
        EXPECT_EQ(c.iso, TimeStamp(SUMMER, 250, false).toString("ISO8601")) << c.zone;
        EXPECT_EQ("2009-07-01T12:30:00.250Z", TimeStamp(SUMMER, 250, true).toISOString()) << c.zone;
    }
}

TEST(TimeStamp, PrintsItsOwnCodes)
{
    TimeZone const zone(CENTRAL_EUROPE);
    TimeStamp const local(SUMMER, 45, false);
    struct {
        char const* format;
        char const* local;
        char const* gmt;
    } const cases[] = {
        {"%H:%M:%S.%s", "14:30:00.045", "12:30:00.045"}, {"[%D]", "[ 1]", "[ 1]"}, {"%%s %%D %%%s", "%s %D %045", "%s %D %045"},
        {"%Z %z", "CEST +0200", "GMT GMT"}, {"", "", ""}, {"%c", "", ""}, // 24 characters from two
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.local, local.toString(c.format)) << c.format;
        EXPECT_EQ(c.gmt, local.toGMT().toString(c.format)) << c.format;
    }
}

// Now is Wednesday 2009-07-01 14:30:45.678; midnight of that day is 1246399200.
TEST(TimeStamp, ParsesFieldsOfFixedWidth)
{
    TimeZone const zone(CENTRAL_EUROPE);
    VirtualClock const clock(SUMMER * 1000 + 45678);
    struct {
        char const* why;
        char const* text;
        char const* format;
        char const* stamp;
    } const cases[] = {
        {"what is not named is that of now, without milliseconds", "08:05", "%H:%M", "1246428345.000"},
        {"milliseconds", "14:30:45.007", "%H:%M:%S.%s", "1246451445.007"},
        {"midnight", "12:00 AM", "%I:%M %p", "1246399245.000"},
        {"noon", "12:00 PM", "%I:%M %p", "1246442445.000"},
        {"afternoon, the mark first", "PM 01:00", "%p %I:%M", "1246446045.000"},
        {"names", "Wednesday, 01 July 2009", "%A, %d %B %Y", "1246451445.000"},
        {"a blank-padded day", " 1.07.2009", "%D.%m.%Y", "1246451445.000"},
        {"two digits of the last century", "02.01.70", "%d.%m.%y", "135045.000"}, // 86400 + 13:30:45 GMT
        {"a percent sign", "50% 08", "50%% %H", "1246429845.000"},
        {"day of the year and of the week agree", "182 3", "%j %w", "1246451445.000"},
        {"the text goes on", "2009-07-01 and on", "%Y-%m-%d", "1246451445.000"},
        {"daylight saving of the day named, not of today", "2009-01-15 01:00:00", "%Y-%m-%d %H:%M:%S", "1231977600.000"},

        {"no such day", "2009-02-31", "%Y-%m-%d", "empty"},
        {"another day of the week", "Tuesday, 01 July 2009", "%A, %d %B %Y", "empty"},
        {"another day of the year", "183", "%j", "empty"},
        {"other text between the fields", "2009/07/01", "%Y-%m-%d", "empty"},
        {"a zero where a blank belongs", "01", "%D", "empty"},
        {"no name of a month", "01 juli", "%d %B", "empty"},
        {"no mark", "01:00 pm", "%I:%M %p", "empty"},
        {"hour 0 of 12", "00 AM", "%I %p", "empty"},
        {"second 60", "60", "%S", "empty"},
        {"day 0", "00", "%d", "empty"},
        {"beyond 32 bits of seconds", "2040-01-01", "%Y-%m-%d", "empty"},
        {"not supported", "Wed Jul  1 14:30:45 2009", "%c", "empty"},
        {"a text that ends in a field", "2009-07-0", "%Y-%m-%d", "empty"},
        {"a text that ends before a field", "2009", "%Y-%m-%d", "empty"},
        {"a text that ends before a mark", "", "....%p", "empty"},
        {"a text that ends before a name", "", "....%A", "empty"},
        {"a format that ends in a code", "2009", "%Y%", "empty"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.stamp, held(TimeStamp::fromString(c.text, c.format))) << c.why;
}

TEST(TimeStamp, ParsesIsoTextsInLocalTimeGmtAndWithAnOffset)
{
    TimeZone const zone(CENTRAL_EUROPE);
    VirtualClock const clock(SUMMER * 1000);
    struct {
        char const* text;
        char const* stamp;
    } const cases[] = {
        {"2009-07-01T14:30:00", "1246451400.000"},
        {"2009-07-01T12:30:00Z", "1246451400.000"},
        {"2009-07-01T14:30:00+02:00", "1246451400.000"},
        {"2009-07-01T09:00:00.001-03:30", "1246451400.001"},
        {"2009-07-01T14:30:0", "empty"},
        {"2009-07-01T14:30:00.", "empty"},
        {"2009-07-01T12:30:00.25Z", "empty"},
        {"2009-07-01T14:30:00+02", "empty"},
        {"2009-07-01T14:30:00+ab:cd", "empty"},
        {"2009-02-29T00:00:00Z", "empty"},
        {"2009-07-01 14:30:00", "empty"},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.stamp, held(TimeStamp::fromString(c.text, "ISO8601"))) << c.text;
        EXPECT_FALSE(TimeStamp::fromISOString(c.text).isGMT()) << c.text;
    }
}

TEST(TimeStamp, IsoTextNearTheEpochSurvivesTheWayThroughLocalTime)
{
    TimeZone const zone("EAST-3");
    VirtualClock const clock(SUMMER * 1000);
    EXPECT_EQ("1800.000", held(TimeStamp::fromISOString("1970-01-01T00:30:00Z"))) << "local time is before the epoch on the way";
    EXPECT_EQ("10800.000", held(TimeStamp::fromISOString("1970-01-01T03:00:00Z"))) << "local time is the epoch on the way";
}

TEST(TimeStamp, BinaryFormIsLocalTime)
{
    TimeZone const zone(CENTRAL_EUROPE);
    support::Bytes const bytes = support::hex("6d 06 01 0e 1e 00 fa 00 01");
    EXPECT_EQ(bytes, support::toBin(TimeStamp(SUMMER, 250, true)));
    TimeStamp read;
    EXPECT_EQ(9u, support::fromBin(read, bytes));
    EXPECT_EQ("1246451400.250", held(read));
    EXPECT_TRUE(read.isGMT());
    support::expectEveryPrefixThrows<TimeStamp>(bytes);

    EXPECT_EQ(support::hex("00 00 00 00 00 00 00 00 01"), support::toBin(TimeStamp(-5, 700, true)));
    support::fromBin(read, support::hex("00 00 00 00 00 00 00 00 00"));
    EXPECT_EQ("empty", held(read));
    EXPECT_FALSE(read.isGMT());
    support::fromBin(read, support::hex("ff ff ff ff ff ff ff ff ff"));
    EXPECT_FALSE(read.isSet()) << "the year 2155 has no 32 bits of seconds";
}

TEST(TimeStamp, XmlReadsBackWhereTheZoneHasThreeLetters)
{
    TimeZone const zone(CENTRAL_EUROPE);
    char const winter[] = "<at format=\"%a %b %d %H:%M:%S.%s %Z %Y\">Thu Jan 15 01:00:00.007 CET 2009</at>";
    EXPECT_EQ(winter, TimeStamp(WINTER, 7, false).toXML("at"));
    TimeStamp read;
    EXPECT_TRUE(read.fromXML(winter));
    EXPECT_EQ("1231977600.007", held(read));
    EXPECT_FALSE(read.fromXML("nothing"));
    EXPECT_EQ("1231977600.007", held(read));
    EXPECT_FALSE(read.fromXML(TimeStamp(SUMMER, 0, false).toXML("at").c_str())) << "CEST is no field of three";
    EXPECT_EQ("empty", held(read));
    EXPECT_EQ("<at format=\"&lt;%Y\">&lt;2009</at>", TimeStamp(SUMMER, 0, false).toXML("at", "<%Y"));
}
