#pragma once

#include "misc/rktl_NodeAllocator.h"
#include "streams/rksl_ElementContainer.h"

#include <set>

namespace rksl {

/// A std::set that can serialise itself; T also needs its less-than. Type id 10000 + that of T, type name that of T + "Set".
/// XML: the elements, each under its type name; reading leaves out children that T does not take.
template <class T> class Set : public ElementContainer<T, std::set<T, std::less<T>, rktl::NodeAllocator<T>>> {
public:
    using ElementContainer<T, std::set<T, std::less<T>, rktl::NodeAllocator<T>>>::ElementContainer;

    unsigned int getTypeId() const override { return 10000 + T().getTypeId(); }
    rktl::String getTypeName() const override { return T().getTypeName() + "Set"; }

    /// False, and as before, when xml holds no element or one without children.
    bool fromXML(char const* xml) override
    {
        auto const children = readXmlChildren(xml);
        if (!children || children->empty())
            return false;
        this->assignElements(*children);
        return true;
    }

    using ElementContainer<T, std::set<T, std::less<T>, rktl::NodeAllocator<T>>>::toXML;

    /// Each element under itemTag, and a line break behind the closing tag. A null tag gives an empty text.
    virtual rktl::String toXML(char const* tag, char const* itemTag) const
    {
        rktl::String xml = this->toElements(tag, itemTag);
        if (tag)
            xml += "\n";
        return xml;
    }
};

} // namespace rksl
