#include "streams/rkxml_DomIterator.h"
#include "streams/rksl_StringMap.h"

#include <cstdlib>

namespace {

/// Asks everything of the cursor and of all that is below it. Two cursors on the same document have to agree.
void compare(rkxml::DomIterator cursor, rkxml::DomIterator other)
{
    for (; !cursor.atEnd() && !other.atEnd(); cursor.nextSibling(), other.nextSibling()) {
        bool const same = cursor.getName() == other.getName() && cursor.getValue() == other.getValue() &&
            cursor.attributes() == other.attributes() && cursor.numChildren() == other.numChildren();
        if (!same || !(cursor < cursor.childrenEnd()))
            abort();
        compare(cursor.childrenBegin(), other.childrenBegin()); // no deeper than the parser lets a document be
    }
    if (!cursor.atEnd() || !other.atEnd())
        abort();
}

} // namespace

/// The text of an element parses again, to the same element, text for text.
extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    rktl::String const xml(reinterpret_cast<char const*>(data), size);
    rkxml::DomIterator::addDTD(xml, "<!DOCTYPE r>");
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd())
        return 0;
    rktl::String const again = root.toXML();
    compare(root, rkxml::DomIterator::parse(again));
    return 0;
}
