#pragma once

#include "misc/rktl_Exception.h"
#include "misc/rktl_NodeAllocator.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <map>
#include <utility>

namespace rksl {

/// A std::map that can serialise itself. Binary form: i32 count, then key and value of each entry in key order, with nothing
/// between them, so a value has to tell its own length from its body. K and V: Serializable and default-constructible.
template <class K, class V> class Map : public rktl::NodeMap<K, V>, public Serializable {
    using Entries = rktl::NodeMap<K, V>;

public:
    using Entries::Entries;

    virtual rktl::String internalTypeName() const = 0;
    virtual unsigned int internalTypeId() const = 0;
    unsigned int getTypeId() const override { return internalTypeId(); }
    rktl::String getTypeName() const override { return internalTypeName(); }

    /// Copies the value of key out and gives true; false, and value as before, when there is no such key.
    bool peek(K const& key, V& value) const
    {
        auto const found = this->find(key);
        if (found == this->end())
            return false;
        value = found->second;
        return true;
    }

    using Entries::operator[];

    /// Throws rktl::Exception "operator[] - no such key in the map." when there is no such key.
    V const& operator[](K const& key) const
    {
        auto const found = this->find(key);
        if (found == this->end())
            throw error("operator[] - no such key in the map.");
        return found->second;
    }

    /// Throws: a map has no XML form of its own. null gives an empty text, as everywhere.
    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override
    {
        if (tag)
            throw error("toXML - not defined for this type of map.");
        return {};
    }

    /// Throws: a map has no XML form of its own.
    bool fromXML(char const*) override { throw error("fromXML - not defined for this type of map."); }

    unsigned int getBinLength() const override
    {
        unsigned int length = sizeof(int32_t);
        for (auto const& [key, value] : *this)
            length += key.getBinLength() + value.getBinLength();
        return length;
    }

    unsigned int toBin(unsigned char* out) const override
    {
        ByteWriter writer(out);
        writer.i32(static_cast<int32_t>(this->size()));
        for (auto const& [key, value] : *this) {
            writer.record(key);
            writer.record(value);
        }
        return writer.written();
    }

    /// Of equal keys the first stays. Throws when the bytes at hand cannot hold the count or an entry.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override
    {
        this->clear();
        ByteReader reader(in, length);
        uint32_t const count = reader.count(K().getBinLength());
        for (uint32_t i = 0; i < count; ++i) {
            K key;
            V value;
            reader.record(key);
            reader.record(value);
            this->emplace(std::move(key), std::move(value));
        }
        return reader.position();
    }

private:
    rktl::Exception error(char const* message) const
    {
        return rktl::Exception("libraries/src/streams/rksl_Map", getTypeName().c_str(), message);
    }
};

} // namespace rksl
