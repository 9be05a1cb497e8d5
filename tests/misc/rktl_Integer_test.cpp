#include <gtest/gtest.h>

#include "misc/rktl_Double.h"
#include "misc/rktl_Integer.h"
#include "support/bytes.h"

#include <climits>

using rktl::Double;
using rktl::Integer;

TEST(Integer, KeepsItsValueInEveryForm)
{
    for (int32_t const value : {0, 1, -1, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(value);
        unsigned char bytes[4];
        Integer read(77);
        ASSERT_EQ(4u, Integer(value).toBin(bytes));
        EXPECT_EQ(4u, read.fromBin(bytes, 4));
        EXPECT_EQ(value, read);
        read = 77;
        EXPECT_TRUE(read.fromXML(Integer(value).toXML("n").c_str()));
        EXPECT_EQ(value, read);
    }
    unsigned char bytes[4];
    Integer(-2).toBin(bytes);
    EXPECT_EQ(std::string("\xFE\xFF\xFF\xFF"), std::string(reinterpret_cast<char*>(bytes), 4));
    EXPECT_EQ("<Integer>-2</Integer>", Integer(-2).toXML());
    support::expectEveryPrefixThrows<Integer>(support::toBin(Integer(1)));
}

TEST(Integer, ReadsNumbersWithWhatFollowsThem)
{
    Integer read(77);
    EXPECT_TRUE(read.fromXML("<n> 12 px</n>"));
    EXPECT_EQ(12, read);
    EXPECT_TRUE(read.fromXML("<n>word</n>"));
    EXPECT_EQ(0, read);
    EXPECT_TRUE(read.fromXML("<n>99999999999</n>"));
    EXPECT_EQ(INT_MAX, read);
}

TEST(Integer, BitsAreThoseOfTheValue)
{
    Integer value;
    rktl::setBit(value, 8, true);
    EXPECT_EQ(256, value);
    rktl::setBit(value, 31, true);
    EXPECT_EQ(INT_MIN + 256, value);
    EXPECT_TRUE(rktl::checkBit(value, 31) && rktl::checkBit(value, 8) && !rktl::checkBit(value, 7));
    rktl::setBit(value, 31, false);
    rktl::setBit(value, 7, false);
    EXPECT_EQ(256, value);
    rktl::setBit(value, 32, true); // no such bit, and not bit 0 again
    rktl::setBit(value, 40, false);
    EXPECT_EQ(256, value);
}

TEST(Double, KeepsItsValueAndWritesItAsAsked)
{
    unsigned char bytes[8];
    ASSERT_EQ(8u, Double(-1.5).toBin(bytes));
    EXPECT_EQ(std::string("\0\0\0\0\0\0\xF8\xBF", 8), std::string(reinterpret_cast<char*>(bytes), 8));
    Double read;
    EXPECT_EQ(8u, read.fromBin(bytes, 8));
    EXPECT_EQ(-1.5, read);
    support::expectEveryPrefixThrows<Double>(support::toBin(Double(0.1)));

    EXPECT_EQ("<d>3.14159</d>", Double(3.14159265).toXML("d"));
    EXPECT_EQ("<d>1e+06</d>", Double(1000000).toXML("d"));
    EXPECT_EQ("<d>1000000.00</d>", Double(1000000).toXML("d", 2));
    EXPECT_EQ("2", Double(1.75).toString(0));
    EXPECT_TRUE(read.fromXML("<d> -2.5e1x</d>"));
    EXPECT_EQ(-25.0, read);
}
