#include <gtest/gtest.h>

#include "streams/rkxml_Tags.h"

#include <string>

namespace {

/// What was found, between "[" and "]" (its "<" and ">"), with "/" behind for a self-closed tag; "none".
std::string openTag(std::string const& text, size_t from = 0)
{
    size_t start = 0;
    size_t end = 0;
    bool selfClosed = false;
    if (!rkxml::findOpenTag(text, from, "item", start, end, selfClosed))
        return "none";
    return std::to_string(start) + " " + text.substr(start, end - start + 1) + (selfClosed ? " closed" : "");
}

/// The place of the close tag; -1 for none.
int closeTag(std::string const& text, size_t from)
{
    size_t start = 0;
    size_t end = 0;
    if (!rkxml::findCloseTag(text, from, "item", start, end))
        return -1;
    EXPECT_EQ("</item>", text.substr(start, end - start + 1));
    return static_cast<int>(start);
}

} // namespace

TEST(Tags, OpenTagOfThatNameAndNoOther)
{
    EXPECT_EQ("0 <item>", openTag("<item>"));
    EXPECT_EQ("7 <item/> closed", openTag("<items><item/>"));
    EXPECT_EQ("0 <item\t/> closed", openTag("<item\t/>"));
    EXPECT_EQ("7 <item>", openTag("<item/x<item>")); // a "/" that ends nothing
    EXPECT_EQ("5 <item>", openTag("<item<item>"));
    for (char const* text : {"", "<item", "<item ", "<item a", "<item/", "</item>", "<items>", "item>"})
        EXPECT_EQ("none", openTag(text)) << text;
}

TEST(Tags, CloseTagOfTheSameElement)
{
    EXPECT_EQ(7, closeTag("<item>x</item></item>", 6));
    EXPECT_EQ(20, closeTag("<item><item>x</item></item>", 6));
    EXPECT_EQ(13, closeTag("<item><item/></item>", 6)); // a self-closed one has no close tag
    EXPECT_EQ(18, closeTag("<item><item a=''/></item>", 6));
    EXPECT_EQ(13, closeTag("<item><items></item>", 6));
    EXPECT_EQ(32, closeTag("<item><item></item><item></item></item>", 6));
    EXPECT_EQ(-1, closeTag("<item><item></item>", 6));
    // The third "<item" gets its ">" from the first close tag only, and so counts from the second one on.
    EXPECT_EQ(32, closeTag("<item><item><item </item></item></item>", 6));
}

// Nesting of a hostile depth: a search that goes back to the start for each close tag would take hours.
TEST(Tags, DeepNestingTakesOneWalk)
{
    size_t const depth = 200000;
    std::string text;
    for (size_t i = 0; i < depth; ++i)
        text += "<item>";
    for (size_t i = 0; i < depth; ++i)
        text += "</item>";
    EXPECT_EQ(static_cast<int>(text.size() - 7), closeTag(text, 6));
}
