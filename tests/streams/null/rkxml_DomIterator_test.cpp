#include <gtest/gtest.h>

#include "misc/rktl_Double.h"
#include "misc/rktl_Integer.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"
#include "streams/rkxml_Document.h"
#include "streams/rkxml_DomIterator.h"

using rktl::String;
using rkxml::DomIterator;

namespace {

char const* const DOCUMENT = "<r a='1'>value<b>7</b></r>";

void expectNull(DomIterator const& cursor)
{
    EXPECT_FALSE(cursor.atEnd());
    EXPECT_FALSE(cursor.hasChildren() || cursor.hasValue() || cursor.hasAttributes() || cursor.hasAttribute("a"));
    EXPECT_EQ(0u, cursor.numChildren() + cursor.numChildren("b"));
    EXPECT_EQ("", cursor.getName() + cursor.getValue() + cursor.toXML() + cursor.getAttribute("a"));
    EXPECT_TRUE(cursor.attributes().empty());
    EXPECT_FALSE(cursor.isEqual(cursor) || cursor < cursor);
}

} // namespace

TEST(NullCursor, ReadsNothing)
{
    DomIterator cursor = DomIterator::parse(DOCUMENT);
    expectNull(cursor);
    cursor.nextSibling();
    cursor.previousSibling();
    expectNull(cursor);
    for (DomIterator const& other :
        {DomIterator(), DomIterator::parse("no document"), DomIterator::parse(DOCUMENT, "<!DOCTYPE r>"), cursor.childrenBegin(),
            cursor.childrenEnd(), cursor.findChild("b"), cursor.searchChild("b")})
        expectNull(other);
    String name("before");
    cursor.getName(name);
    EXPECT_EQ("", name + DomIterator::removeDoctype(DOCUMENT) + DomIterator::addDTD(DOCUMENT, "<!DOCTYPE r>"));
    EXPECT_EQ("", rkxml::open("r") + rkxml::close("r"));
}

TEST(NullCursor, SingleValuesBecomeEmptyAndContainersStay)
{
    String text("before");
    rktl::Integer integer(5);
    rktl::Double real(5.0);
    EXPECT_TRUE(text.fromXML("<t>x</t>") && integer.fromXML("<t>1</t>") && real.fromXML("<t>1</t>"));
    EXPECT_TRUE(text.empty() && integer == 0 && real == 0.0);

    rksl::StringMap<String> map;
    map["a"] = "1";
    rksl::Set<String> set{"a"};
    EXPECT_FALSE(map.fromXML(map.toXML("m").c_str()) || set.fromXML(set.toXML("s").c_str()));
    EXPECT_TRUE(map.size() == 1 && set.size() == 1);
}
