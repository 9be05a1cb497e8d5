#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

using rktl::Integer;

namespace {

// The null cursor is never at its end: a walk that only waits for the end would never come back.
TEST(NullCursor, ContainersReadNothingAndReturn)
{
    rksl::Set<Integer> set{4};
    EXPECT_FALSE(set.fromXML("<s><i>1</i></s>"));
    EXPECT_EQ(rksl::Set<Integer>{4}, set);

    rksl::StringMap<Integer> map{{"a", 4}};
    EXPECT_FALSE(map.fromXML("<m><item>1</item></m>"));
    EXPECT_EQ((rksl::StringMap<Integer>{{"a", 4}}), map);

    rksl::List<Integer> list{4};
    EXPECT_TRUE(list.fromXML("<l><i>1</i></l>"));
    EXPECT_TRUE(list.empty());
}

} // namespace
