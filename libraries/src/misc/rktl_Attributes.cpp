#include "misc/rktl_Attributes.h"

namespace rktl {

String const& Attributes::getAttribute(String const& key) const
{
    static String const none;
    auto const found = mAttributes->find(key);
    return found == mAttributes->end() ? none : found->second;
}

void Attributes::setAttribute(String const& key, String const& value)
{
    auto const found = mAttributes->find(key);
    bool const isThere = found != mAttributes->end();
    if (value.empty() ? !isThere : isThere && found->second == value) // what is shared stays so
        return;
    String const copy = value; // it may lie in the map that is about to be left to others
    if (copy.empty())
        mAttributes.change().erase(key);
    else
        mAttributes.change()[key] = copy;
}

void Attributes::updateAttributes(rksl::StringMap<String> const& attributes)
{
    for (auto const& [key, value] : attributes)
        setAttribute(key, value);
}

void Attributes::getNamespaceNames(String const& key, rksl::Set<String>& set) const
{
    set.clear();
    String::tokenize(getAttribute(key), "|", set);
}

void Attributes::getNamespaceValues(String const& nameSpace, rksl::StringMap<String>& map) const
{
    map.clear();
    String const prefix = nameSpace + ":";
    for (auto entry = mAttributes->lower_bound(prefix); entry != mAttributes->end() && entry->first.hasPrefix(prefix); ++entry)
        map[entry->first.substr(prefix.size())] = entry->second;
}

void Attributes::addNamespaceValues(String const& nameSpace, rksl::StringMap<String> const& values, String const& listKey)
{
    if (!listKey.empty()) {
        rksl::Set<String> names;
        getNamespaceNames(listKey, names);
        names.insert(nameSpace);
        mAttributes.change()[listKey] = String::join(names, "|");
    }
    for (auto const& [key, value] : values)
        mAttributes.change()[nameSpace + ":" + key] = value;
}

} // namespace rktl
