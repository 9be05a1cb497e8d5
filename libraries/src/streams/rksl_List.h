#pragma once

#include "misc/rktl_NodeAllocator.h"
#include "streams/rksl_ElementContainer.h"

#include <list>

namespace rksl {

/// A std::list that can serialise itself. Type id 5000 + that of T, type name that of T + "List".
/// XML: the elements, each under its type name; reading leaves out children that T does not take.
template <class T> class List : public ElementContainer<T, std::list<T, rktl::NodeAllocator<T>>> {
public:
    using ElementContainer<T, std::list<T, rktl::NodeAllocator<T>>>::ElementContainer;

    unsigned int getTypeId() const override { return 5000 + T().getTypeId(); }
    rktl::String getTypeName() const override { return T().getTypeName() + "List"; }

    /// False, and as before, when xml holds no element. No children: an empty list.
    bool fromXML(char const* xml) override
    {
        auto const children = readXmlChildren(xml);
        if (!children)
            return false;
        this->assignElements(*children);
        return true;
    }
};

} // namespace rksl
