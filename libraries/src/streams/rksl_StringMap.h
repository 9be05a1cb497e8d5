#pragma once

#include "streams/rksl_Map.h"
#include "streams/rksl_XmlChildren.h"

#include <algorithm>

namespace rksl {

/// A map from text to V. Type id 15000 + that of V, type name that of V + "StringMap".
/// XML: one <item rk:displayName="key"> for each entry, in key order; keys are written as they stand, not escaped.
template <class V> class StringMap : public Map<rktl::String, V> {
public:
    using Map<rktl::String, V>::Map;

    unsigned int internalTypeId() const override { return 15000 + V().getTypeId(); }
    rktl::String internalTypeName() const override { return V().getTypeName() + "StringMap"; }

    using Map<rktl::String, V>::toXML;
    rktl::String toXML(char const* tag) const override
    {
        if (!tag)
            return {};
        rktl::String const name(tag);
        rktl::String xml("<" + name + " xmlns:rk=\"" + settingsNamespace + "\">");
        for (auto const& [key, value] : *this) {
            rktl::String item = value.toXML("item");
            item.insert(std::min(item.size(), behindItemName), " rk:displayName=\"" + key + "\"");
            xml += item;
        }
        xml += "</" + name + ">\n";
        return xml;
    }

    /// The key of a child is its rk:displayName or, when that is empty, its element name; of equal keys the first stays.
    /// False, and as before, when xml holds no element or one without children.
    bool fromXML(char const* xml) override
    {
        auto const children = readXmlChildren(xml);
        if (!children || children->empty())
            return false;
        this->clear();
        for (XmlChild const& child : *children) {
            V value;
            value.fromXML(child.xml.c_str());
            this->emplace(child.displayName.empty() ? child.name : child.displayName, std::move(value));
        }
        return true;
    }

private:
    /// Namespace of the settings' own attributes; a name, not an address.
    static constexpr char const* settingsNamespace = "urn:contraflow:settings";
    static constexpr size_t behindItemName = 5; // "<item"
};

} // namespace rksl
