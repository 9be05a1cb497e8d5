#include <gtest/gtest.h>

#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "support/TempFolder.h"
#include "support/bytes.h"

#include <climits>

using rktl::String;

namespace {

std::string joined(std::list<String> const& tokens)
{
    std::string text;
    for (String const& token : tokens)
        text += "[" + token + "]";
    return text;
}

} // namespace

TEST(String, NumbersStayWithinTheirRange)
{
    struct {
        char const* text;
        int32_t number;
        uint32_t positive;
    } const cases[] = {
        {"", 0, 0},
        {"-7", -7, 0},
        {" 12 px", 12, 12},
        {"2147483648", INT_MAX, 2147483648u},
        {"-2147483649", INT_MIN, 0},
        {"4294967296", INT_MAX, UINT_MAX},
        {"-99999999999999999999999", INT_MIN, 0},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.number, String(c.text).toInteger()) << c.text;
        EXPECT_EQ(c.positive, String(c.text).toUnsignedInt()) << c.text;
    }
    for (char const* yes : {"true", "T", "ON", "Yes", "y", "2", "-1"})
        EXPECT_TRUE(String(yes).toBool()) << yes;
    for (char const* no : {"no", "", "0", "truely", "off", "t "})
        EXPECT_FALSE(String(no).toBool()) << no;
}

TEST(String, CutsPadsAndCleans)
{
    String const seven("abcdefg");
    std::string const longText(5000, 'x'); // beyond any buffer of a fixed size
    EXPECT_EQ("7 " + longText + "!", String::fromFormat("%d %s!", 7, longText.c_str()));
    EXPECT_EQ("", seven.abbreviate(2));
    EXPECT_EQ("...", seven.abbreviate(3));
    EXPECT_EQ("ab...", seven.abbreviate(5));
    EXPECT_EQ("abcdefg", seven.abbreviate(0xFFFFFFFF));

    EXPECT_EQ("ERR ", String("ERR").padEnd(4, ' '));
    EXPECT_EQ("a\vb", String(" \t\r\na\vb\n\r\t ").trim());
    EXPECT_EQ("ab c", String::sanitize("< ab, c! >", "abc "));
    EXPECT_EQ("\xC4 b", String("\xC4 B").toLower()); // bytes beyond ASCII are nobody's letters

    EXPECT_EQ("x", String("a(x)b(y)").extract("(", ")"));
    EXPECT_EQ("", String(")a(").extract("(", ")"));
    EXPECT_TRUE(seven.hasPrefix("abc") && seven.hasPrefix("") && !seven.hasPrefix("bc") && !seven.hasPrefix("abcdefgh"));

    EXPECT_LT(seven.iCompare("ABCDEFGh"), 0);
    EXPECT_GT(String("\xE4").iCompare("z"), 0); // whatever the signedness of char
    EXPECT_LT(String("_").iCompare("A"), 0);    // compared as lower case

    char target[5] = {'#', '#', '#', '#', '#'};
    seven.copyString(target, 3);
    EXPECT_EQ(std::string("abc\0#", 5), std::string(target, 5));
}

TEST(String, TokensRespectQuotes)
{
    struct {
        char const* text;
        char const* delimiters;
        char const* quotes;
        char const* tokens;
    } const cases[] = {
        {"a,b", "", "", "[a,b]"},
        {"a;b,c", ",;", "", "[a][b][c]"},
        {"a \"b c\"", " ", "\"", "[a][\"b c\"]"},
        {"a \"b c\"", " ", "", "[a][\"b][c\"]"},
        {"'a \" b' c", " ", "\"'", "['a \" b'][c]"},        // only the same quote closes
        {"\"a \\\" b\" c", " ", "\"", "[\"a \\\" b\"][c]"}, // a backslash hides the quote behind it
        {"a\\\" b", " ", "\"", "[a\\\" b]"},                // but only inside a stretch
        {"a \"b c d", " ", "\"", "[a][\"b c d]"},           // never closed
        {"\"a\\", " ", "\"", "[\"a\\]"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.tokens, joined(String(c.text).tokenize(c.delimiters, c.quotes))) << c.text;
}

TEST(String, TokensGoToAnyContainerAndBack)
{
    rksl::Set<rktl::Integer> numbers{5};
    String::tokenize("10,9,x,10", ",", numbers);
    EXPECT_EQ("0,5,9,10", String::join(numbers, ",")); // as numbers, not as text
    EXPECT_EQ(",", String::join(rksl::List<String>{"", ""}, ","));
}

TEST(String, EntitiesGoThereAndBack)
{
    EXPECT_EQ("a&lt;b&gt;&amp;&apos;&quot;", String::encodeHtml("a<b>&'\""));
    EXPECT_EQ("&amp;lt;", String::encodeHtml("&lt;"));
    EXPECT_EQ("a<b>&'\"", String::decodeHtml("a&lt;b&gt;&amp;&apos;&quot;"));
    EXPECT_EQ("<", String::decodeHtml("&amp;lt;"));
    EXPECT_EQ("&amp;", String::decodeHtml("&amp;amp;")); // one replacement at one place
    EXPECT_EQ("&nbsp; &", String::decodeHtml("&nbsp; &"));
}

TEST(String, BinaryFormEndsAtTheFirstNul)
{
    String const text("a\0b", 3);
    unsigned char bytes[8];
    ASSERT_EQ(8u, text.getBinLength());
    ASSERT_EQ(8u, text.toBin(bytes));
    EXPECT_EQ(std::string("\3\0\0\0a\0b\0", 8), std::string(reinterpret_cast<char*>(bytes), 8));

    String read("before");
    EXPECT_EQ(6u, read.fromBin(bytes, 8));
    EXPECT_EQ("a", read);

    unsigned char const lying[] = {0xFF, 0xFF, 0xFF, 0xFF, 'o', 'k', 0}; // the count is of no account
    EXPECT_EQ(7u, read.fromBin(lying, 7));
    EXPECT_EQ("ok", read);

    support::expectEveryPrefixThrows<String>(support::toBin(String("text")));
    support::expectEveryPrefixThrows<String>(support::toBin(String()));
}

TEST(String, XmlFormKeepsEveryText)
{
    EXPECT_EQ("<t/>", String().toXML("t"));
    for (char const* text : {"", "a<b>&'\"", "&lt;", "  ", "line\r\nline\n", " x "}) {
        String read("before");
        EXPECT_TRUE(read.fromXML(String(text).toXML("t").c_str()));
        EXPECT_EQ(text, read);
    }
    String read("before");
    EXPECT_FALSE(read.fromXML("no element"));
    EXPECT_EQ("before", read);
}

TEST(String, FileIsTheBareText)
{
    TempFolder const folder;
    std::string const path = folder / "text";
    String const text("a\0b\r\n", 5);
    ASSERT_TRUE(String("something longer than that").toFile(path.c_str()));
    ASSERT_TRUE(text.toFile(path.c_str()));
    EXPECT_EQ(5u, std::filesystem::file_size(path));
    String read("before");
    ASSERT_TRUE(read.fromFile(path.c_str()));
    EXPECT_EQ(text, read);

    EXPECT_FALSE(read.fromFile(folder.path().c_str())); // a folder opens, but holds no text
    EXPECT_EQ(text, read);
    EXPECT_FALSE(text.toFile("/dev/full"));
}
