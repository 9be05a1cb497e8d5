#include <gtest/gtest.h>

#include "streams/rksl_StringMap.h"
#include "streams/rkxml_DomIterator.h"

using rktl::String;
using rkxml::DomIterator;

namespace {

std::string namesFrom(DomIterator cursor)
{
    std::string names;
    for (; !cursor.atEnd(); cursor.nextSibling())
        names += cursor.getName() + " ";
    return names;
}

std::string nested(unsigned int depth)
{
    std::string text;
    for (unsigned int i = 0; i < depth; ++i)
        text += "<a>";
    for (unsigned int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

} // namespace

TEST(DomIterator, WalksElementsOnly)
{
    DomIterator const root = DomIterator::parse(
        "<?xml version=\"1.0\"?>\n<!-- c -->\n<root>text<a/><!-- c -->more<b/><![CDATA[ <x> ]]><a/> </root>\n");
    EXPECT_EQ("root", root.getName());
    EXPECT_EQ(3u, root.numChildren());
    EXPECT_EQ(2u, root.numChildren("a"));
    EXPECT_EQ("a b a ", namesFrom(root.childrenBegin()));
    EXPECT_EQ("root ", namesFrom(root)); // what stands beside the root is no sibling
    EXPECT_EQ("textmore <x>  ", root.getValue());

    DomIterator cursor = root.childrenEnd();
    cursor.previousSibling();
    cursor.previousSibling();
    EXPECT_EQ("b", cursor.getName());
    cursor.previousSibling();
    EXPECT_TRUE(cursor.isEqual(root.findChild("a")));
    cursor.previousSibling();
    EXPECT_TRUE(cursor.atEnd());
    EXPECT_EQ("b a ", namesFrom(root.searchChild("b")));
}

TEST(DomIterator, ValuesAndAttributesComeAsWritten)
{
    DomIterator const root = DomIterator::parse("<r a=\"&lt;1&amp;\" rk:b='\t&#65;' c=\"\"> x&lt;y\r\n&quot;&#x41; </r>");
    EXPECT_EQ(" x<y\r\n\"A ", root.getValue());
    EXPECT_TRUE(root.hasValue());
    EXPECT_EQ("<1&", root.getAttribute("a"));
    EXPECT_EQ("\tA", root.getAttribute("rk:b"));
    EXPECT_EQ("", root.getAttribute("d"));
    EXPECT_EQ("  ", DomIterator::parse("<r>  </r>").getValue());
    EXPECT_EQ("", DomIterator::parse("<r>\n <a/>\n</r>").getValue());        // layout
    EXPECT_EQ("\xFF\xE4", DomIterator::parse("<r>\xFF\xE4</r>").getValue()); // bytes, whatever their encoding
}

TEST(DomIterator, TextOfAnElementParsesToTheSameElement)
{
    DomIterator const item =
        DomIterator::parse("<m xmlns:rk='u'><item rk:displayName='a&quot;&lt;b'>x&amp;y<z> </z><e/>&#32;&#13;\n</item></m>")
            .childrenBegin();
    String const xml = item.toXML();
    DomIterator const again = DomIterator::parse(xml);
    EXPECT_EQ(xml, again.toXML());
    EXPECT_EQ("a\"<b", again.getAttribute("rk:displayName"));
    EXPECT_EQ(item.getValue(), again.getValue());
    EXPECT_EQ(" ", again.findChild("z").getValue());
    EXPECT_EQ("z e ", namesFrom(again.childrenBegin()));
}

TEST(DomIterator, WhatIsNoDocumentIsAtEnd)
{
    for (char const* text : {"", " ", "text", "<a>", "</a>", "<a></b>", "<a/><b/>", "<a/>text", "text<a/>", "<a", "<a b=c/>",
             "<a b/>", "<!-- c -->"}) {
        DomIterator const cursor = DomIterator::parse(text);
        EXPECT_TRUE(cursor.atEnd()) << text;
    }
}

TEST(DomIterator, HostileDocumentsAreBounded)
{
    EXPECT_FALSE(DomIterator::parse(nested(256)).atEnd());
    EXPECT_FALSE(DomIterator::parse("<r>" + nested(255) + nested(255) + "</r>").atEnd());
    EXPECT_TRUE(DomIterator::parse(nested(257)).atEnd());
    EXPECT_TRUE(DomIterator::parse("<r>x" + nested(1) + nested(256) + "</r>").atEnd());
    EXPECT_TRUE(DomIterator::parse(nested(200000)).atEnd());
    // Entities of a document's own are not expanded, and nothing is fetched.
    DomIterator const bomb =
        DomIterator::parse("<!DOCTYPE r [<!ENTITY a \"aaaa\"><!ENTITY f SYSTEM \"file:///etc/passwd\">]><r>&a;&f;</r>");
    EXPECT_EQ("&a;&f;", bomb.getValue());
}
