#include <gtest/gtest.h>

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "support/bytes.h"

using rksl::List;
using rksl::Set;
using rktl::Integer;
using rktl::String;
using support::fromBin;
using support::hex;

namespace {

std::string number(char const* littleEndian)
{
    return "f801 0000 04000000 " + std::string(littleEndian);
}

/// 28 bytes: size, type 504 and count, as the body of a container of Integer begins.
std::string head(char const* size, char const* count)
{
    return std::string(size) + number("f8010000") + number(count);
}

struct Unwritable : Integer {
    unsigned int toBin(unsigned char*) const override { throw 1; }
};

std::string const failed = "rksl::Serializable::fromBin() - Failed!";

// A set is a list in its sort order: both write the element type, the count, and each element as a frame.
TEST(List, BodyIsAStreamOfFramedElements)
{
    EXPECT_EQ(hex(head("18000000", "00000000")), support::toBin(List<Integer>()));
    EXPECT_EQ(hex(head("30000000", "02000000") + number("02000000") + number("01000000")), support::toBin(List<Integer>{2, 1}));
    EXPECT_EQ(hex(head("30000000", "02000000") + number("01000000") + number("02000000")), support::toBin(Set<Integer>{2, 1}));

    List<String> const texts{"a", "", "ccc"}; // bodies of 6, 5 and 8 bytes
    EXPECT_EQ(4u + 2 * 12 + 3 * 8 + 6 + 5 + 8, texts.getBinLength());
    List<String> back{"old"};
    EXPECT_EQ(texts.getBinLength(), fromBin(back, support::toBin(texts)));
    EXPECT_EQ(texts, back);

    List<List<String>> const nested{texts, {}, {"x"}};
    List<List<String>> nestedBack;
    fromBin(nestedBack, support::toBin(nested));
    EXPECT_EQ(nested, nestedBack);
}

TEST(List, OtherElementTypeGivesNothingAndDoesNotThrow)
{
    List<String> texts{"old"};
    EXPECT_EQ(0u, fromBin(texts, support::toBin(List<Integer>{1, 2})));
    EXPECT_TRUE(texts.empty());
}

TEST(List, CountsAndLengthsThatTheBytesDoNotHoldAreRefused)
{
    support::expectEveryPrefixThrows<List<String>>(support::toBin(List<String>{"ab", ""}));
    support::expectEveryPrefixThrows<Set<Integer>>(support::toBin(Set<Integer>{1, 2}));

    struct {
        char const* why;
        std::string bytes;
    } const cases[] = {
        {"one element too few", head("24000000", "02000000") + number("01000000")},
        {"a count of 2^31 - 1", head("18000000", "ffffff7f")},
        {"a negative count", head("18000000", "ffffffff")},
        {"no count", "0c000000" + number("f8010000")},
        {"no element type", "00000000"},
        {"an element of another type", head("2d000000", "01000000") + "f501 0000 05000000 00000000 00 00000000"},
        {"an element whose body is too short", head("23000000", "01000000") + "f801 0000 03000000 010000"},
    };
    for (auto const& c : cases) {
        List<Integer> numbers{1};
        std::string const text = support::thrownBy([&] { fromBin(numbers, hex(c.bytes)); });
        EXPECT_NE("", text) << c.why;
        EXPECT_TRUE(text == failed || text.find("resulting memory is not valid") != std::string::npos) << c.why << ": " << text;
    }
}

TEST(List, ElementThatCannotBeWrittenFailsTheWhole)
{
    List<Unwritable> list;
    list.emplace_back();
    EXPECT_EQ(0u, list.getBinLength());
    EXPECT_EQ(failed, support::thrownBy([&] { list.toBin(nullptr); }));
    List<List<Unwritable>> const nested{list}; // the inner length of 0 must not become a block that is written past
    EXPECT_EQ(0u, nested.getBinLength());
    EXPECT_EQ(failed, support::thrownBy([&] { nested.toBin(nullptr); }));
}

TEST(List, XmlHoldsTheElementsUnderTheirTypeName)
{
    EXPECT_EQ("<l><rktl_String>a&lt;b</rktl_String><rktl_String/></l>", (List<String>{"a<b", ""}.toXML("l")));
    EXPECT_EQ("<s><Integer>1</Integer><Integer>2</Integer></s>", (Set<Integer>{2, 1}.toXML("s")));
}

TEST(List, ReadsXmlChildrenThatTheElementTypeTakes)
{
    List<String> texts{"old"};
    EXPECT_TRUE(texts.fromXML("<l><x>a&lt;b</x><y/></l>"));
    EXPECT_EQ((List<String>{"a<b", ""}), texts);
    EXPECT_TRUE(texts.fromXML("<l/>"));
    EXPECT_TRUE(texts.empty());

    List<Set<Integer>> sets; // a set takes no element without children
    EXPECT_TRUE(sets.fromXML("<l><s><i>1</i></s><s/><s><i>2</i></s></l>"));
    EXPECT_EQ((List<Set<Integer>>{{1}, {2}}), sets);

    Set<Integer> numbers{4};
    EXPECT_TRUE(numbers.fromXML("<s><i>3</i><i>1</i><i>3</i></s>"));
    EXPECT_EQ((Set<Integer>{1, 3}), numbers);
}

} // namespace
