#include "streams/rksl_XmlChildren.h"

#include "streams/rkxml_DomIterator.h"

namespace rksl {

std::optional<XmlChildren> readXmlChildren(char const* xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(rktl::String(xml));
    if (cursor.atEnd())
        return std::nullopt;
    XmlChildren children;
    // The null cursor never says that it is at its end, but it has no children either.
    if (cursor.hasChildren())
        for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
            children.push_back({cursor.getName(), cursor.getAttribute("rk:displayName"), cursor.toXML()});
    return children;
}

} // namespace rksl
