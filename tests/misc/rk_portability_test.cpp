#include <gtest/gtest.h>

#include "misc/rk_portability.h"

#include <cstdlib>
#include <thread>

TEST(Portability, BoundedCopyAlwaysEnds)
{
    char target[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(1, rk_strcpy(target, 3, "abc"));
    EXPECT_EQ(std::string("ab\0#", 4), std::string(target, 4));
    EXPECT_EQ(1, rk_strcpy(target, 1, "abc"));
    EXPECT_STREQ("", target);
    EXPECT_EQ(0, rk_strcpy(target, 0, "abc"));
    EXPECT_EQ(0, rk_strcpy(nullptr, 4, "abc"));
    EXPECT_EQ(0, rk_strcpy(target, 4, nullptr));
}

TEST(Portability, TextFunctionsTakeNull)
{
    EXPECT_EQ(nullptr, rk_strdup(nullptr));
    EXPECT_EQ(nullptr, rk_strlwr(nullptr));
    EXPECT_EQ(0, rk_stricmp(nullptr, nullptr));
    EXPECT_LT(rk_stricmp(nullptr, ""), 0);
    EXPECT_GT(rk_stricmp("", nullptr), 0);
    EXPECT_EQ(0, rk_atoi64(nullptr));

    char* const copy = rk_strdup("MiXed-1");
    EXPECT_EQ(copy, rk_strupr(copy));
    EXPECT_STREQ("MIXED-1", copy);
    EXPECT_STREQ("mixed-1", rk_strlwr(copy));
    free(copy);
}

TEST(Portability, NumbersOf64Bits)
{
    EXPECT_EQ(INT64_C(-9007199254740993), rk_atoi64("-9007199254740993")); // no double holds it
    EXPECT_EQ(INT64_MAX, rk_atoi64("9223372036854775808"));
    EXPECT_EQ(INT64_MIN, rk_atoi64("-9223372036854775809"));
    EXPECT_EQ(12, rk_atoi64("  12abc"));
}

TEST(Portability, ThreadsHaveNumbersOfTheirOwn)
{
    uint32_t other = 0;
    std::thread([&other] { other = rk_get_threadid(); }).join();
    EXPECT_NE(0u, other);
    EXPECT_NE(rk_get_threadid(), other);
    EXPECT_EQ(rk_get_threadid(), rk_get_threadid());
}
