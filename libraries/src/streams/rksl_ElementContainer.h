#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_XmlChildren.h"

#include <cstdint>
#include <exception>
#include <utility>

namespace rksl {

/// Frames of two rktl::Integer, the element type and the element count, that stand in front of the elements.
void writeElementHead(MemIOStream& stream, unsigned int elementTypeId, size_t elementCount);

/// The next rktl::Integer of the stream.
int32_t readElementNumber(MemIOStream& stream);

/// What rksl::List and rksl::Set share: a container of the standard library that serialises its elements.
///
/// Binary form: that of a rksl::MemIOStream (u32 size, frames) which holds the element type id, the count and each element
/// in order. An element that cannot be serialised makes getBinLength 0 and lets toBin throw rktl::Exception
/// "rksl::Serializable::fromBin() - Failed!", as do frames that do not hold what the count promises.
/// T: Serializable and default-constructible. Base: the container of the standard library.
template <class T, class Base> class ElementContainer : public Base, public Serializable {
public:
    using Base::Base;

    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override { return toElements(tag, nullptr); }

    unsigned int getBinLength() const override
    {
        try {
            MemIOStream stream;
            writeTo(stream);
            return stream.getBinLength();
        } catch (std::exception const&) {
            return 0;
        }
    }

    unsigned int toBin(unsigned char* out) const override
    {
        // Nothing is written to out before all elements are known to be good: getBinLength promised 0 bytes if one is not.
        MemIOStream stream;
        try {
            writeTo(stream);
        } catch (std::exception const&) {
            ByteReader::fail();
        }
        return stream.toBin(out);
    }

    /// 0, and no elements, when the body is that of a container of another element type. Throws the stream's exception when
    /// the body is no chain of frames; the elements are then as before.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override
    {
        MemIOStream stream;
        unsigned int const used = stream.fromBin(in, length);
        this->clear();
        try {
            return readFrom(stream) ? used : 0;
        } catch (std::exception const&) {
            ByteReader::fail();
        }
    }

protected:
    /// itemTag: tag of every element; null: each element's type name.
    rktl::String toElements(char const* tag, char const* itemTag) const
    {
        if (!tag)
            return {};
        rktl::String const name(tag);
        rktl::String xml("<" + name + ">");
        for (T const& element : *this)
            xml += itemTag ? element.toXML(itemTag) : element.toXML();
        xml += "</" + name + ">";
        return xml;
    }

    /// Replaces the elements by those that can be read from the children.
    void assignElements(XmlChildren const& children)
    {
        this->clear();
        for (XmlChild const& child : children) {
            T element;
            if (element.fromXML(child.xml.c_str()))
                this->insert(this->end(), std::move(element));
        }
    }

private:
    void writeTo(MemIOStream& stream) const
    {
        writeElementHead(stream, T().getTypeId(), this->size());
        for (T const& element : *this)
            stream.write(element);
    }

    bool readFrom(MemIOStream& stream)
    {
        if (readElementNumber(stream) != static_cast<int32_t>(T().getTypeId()))
            return false;
        int32_t const count = readElementNumber(stream);
        if (count < 0)
            ByteReader::fail();
        for (int32_t i = 0; i < count; ++i) {
            T element;
            stream.read(element);
            this->insert(this->end(), std::move(element));
        }
        return true;
    }
};

} // namespace rksl
