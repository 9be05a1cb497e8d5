#pragma once

#include "misc/rktl_CopyOnWrite.h"
#include "misc/rktl_String.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

namespace rktl {

/// Named texts of a record. A missing attribute and an empty one are the same thing. An attribute may belong to a namespace;
/// its key is then "namespace:key". Copies share the texts until one of them changes: events and objects are copied with each
/// frame.
class Attributes {
public:
    Attributes() = default;
    virtual ~Attributes() = default;
    Attributes(Attributes const&) = default;
    Attributes(Attributes&&) = default;
    Attributes& operator=(Attributes const&) = default;
    Attributes& operator=(Attributes&&) = default;

    /// "" when there is none. Valid until an attribute changes.
    String const& getAttribute(String const& key) const;

    rksl::StringMap<String> const& getAttributes() const { return *mAttributes; }

    /// An empty value removes the key.
    void setAttribute(String const& key, String const& value);

    /// setAttribute for each pair.
    void updateAttributes(rksl::StringMap<String> const& attributes);

    /// set becomes the value of key, split at "|".
    void getNamespaceNames(String const& key, rksl::Set<String>& set) const;

    /// map becomes the attributes of that namespace, without it and the ":" in their keys.
    void getNamespaceValues(String const& nameSpace, rksl::StringMap<String>& map) const;

    /// Stores values as attributes of that namespace, empty ones too. With a listKey, adds the namespace's name to that
    /// attribute, a sorted list with "|" between.
    void addNamespaceValues(String const& nameSpace, rksl::StringMap<String> const& values, String const& listKey);

protected:
    CopyOnWrite<rksl::StringMap<String>> mAttributes;
};

} // namespace rktl
