#pragma once

#include "misc/rktl_String.h"

#include <optional>
#include <vector>

namespace rksl {

/// One child element of an XML element.
struct XmlChild {
    rktl::String name;
    rktl::String displayName; ///< its attribute rk:displayName, "" without
    rktl::String xml;         ///< the whole child as a text of its own
};

using XmlChildren = std::vector<XmlChild>;

/// The child elements of the element that xml holds, in order; nothing when xml holds no element. null is no element.
std::optional<XmlChildren> readXmlChildren(char const* xml);

} // namespace rksl
