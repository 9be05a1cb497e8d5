#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_IntMap.h"
#include "streams/rksl_List.h"
#include "streams/rksl_StringMap.h"
#include "support/bytes.h"

using rksl::IntMap;
using rksl::StringMap;
using rktl::Integer;
using rktl::String;
using support::fromBin;
using support::hex;

namespace {

TEST(Map, BodyIsACountAndBareEntriesInKeyOrder)
{
    StringMap<Integer> map{{"b", 2}, {"", -1}};
    std::string const body = "02000000 00000000 00 ffffffff 01000000 62 00 02000000";
    EXPECT_EQ(hex(body), support::toBin(map));
    EXPECT_EQ(hex("01000000 07000000 03000000 616263 00"), support::toBin(IntMap<String>{{7, "abc"}}));

    StringMap<Integer> back{{"old", 0}};
    EXPECT_EQ(23u, fromBin(back, hex(body + "ee")));
    EXPECT_EQ(map, back);

    IntMap<rksl::List<String>> const lists{{-1, {"x"}}, {2, {}}}; // a value that frames itself
    IntMap<rksl::List<String>> listsBack;
    fromBin(listsBack, support::toBin(lists));
    EXPECT_EQ(lists, listsBack);
}

TEST(Map, FirstOfEqualKeysStays)
{
    IntMap<Integer> map;
    EXPECT_EQ(20u, fromBin(map, hex("02000000 01000000 0a000000 01000000 0b000000")));
    EXPECT_EQ((IntMap<Integer>{{1, 10}}), map);
}

TEST(Map, CountsThatTheBytesDoNotHoldAreRefused)
{
    support::expectEveryPrefixThrows<StringMap<Integer>>(support::toBin(StringMap<Integer>{{"ab", 1}, {"c", 2}}));
    for (char const* bytes : {"ffffff7f 00000000 00000000", "ffffffff", "02000000 01000000 0a000000"}) {
        IntMap<Integer> map;
        EXPECT_EQ("rksl::Serializable::fromBin() - Failed!", support::thrownBy([&] { fromBin(map, hex(bytes)); })) << bytes;
    }
}

TEST(Map, TextKeysAreAttributesOfTheXmlItems)
{
    StringMap<String> const map{{"b", "2<3"}, {"a&", ""}};
    EXPECT_EQ("<m xmlns:rk=\"urn:contraflow:settings\"><item rk:displayName=\"a&\"/>"
              "<item rk:displayName=\"b\">2&lt;3</item></m>\n",
        map.toXML("m"));
}

TEST(Map, ReadsXmlChildrenByDisplayNameOrElementName)
{
    StringMap<Integer> map{{"old", 1}};
    EXPECT_FALSE(map.fromXML("<m/>"));
    EXPECT_EQ((StringMap<Integer>{{"old", 1}}), map);
    EXPECT_TRUE(map.fromXML("<m><item rk:displayName='two words'>1</item><plain>2</plain><item rk:displayName=''>3</item>"
                            "<plain>4</plain><item rk:displayName='bad'>x</item></m>"));
    EXPECT_EQ((StringMap<Integer>{{"two words", 1}, {"plain", 2}, {"item", 3}, {"bad", 0}}), map);
}

} // namespace
