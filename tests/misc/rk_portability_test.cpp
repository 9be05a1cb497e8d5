#include <gtest/gtest.h>

#include "misc/rk_portability.h"

TEST(Portability, BoundedCopyAlwaysEnds)
{
    char target[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(1, rk_strcpy(target, 3, "abc"));
    EXPECT_EQ(std::string("ab\0#", 4), std::string(target, 4));
    EXPECT_EQ(1, rk_strcpy(target, 1, "abc"));
    EXPECT_STREQ("", target);
    EXPECT_EQ(0, rk_strcpy(target, 0, "abc"));
}

TEST(Portability, NumbersOf64Bits)
{
    EXPECT_EQ(INT64_C(-9007199254740993), rk_atoi64("-9007199254740993")); // no double holds it
    EXPECT_EQ(INT64_MAX, rk_atoi64("9223372036854775808"));
    EXPECT_EQ(INT64_MIN, rk_atoi64("-9223372036854775809"));
    EXPECT_EQ(12, rk_atoi64("  12abc"));
}
