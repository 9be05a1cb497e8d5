#pragma once

namespace rktl {
class String;
}

namespace rksl {

/// Base of everything that can be stored or put on the wire: it knows its type id and name, its binary and its XML form.
///
/// Binary forms are little-endian on every host, without padding, written and read through rksl::ByteWriter and
/// rksl::ByteReader. A reader never trusts a count or length that the bytes at hand cannot hold: it throws
/// rktl::Exception with the form's own text.
class Serializable {
public:
    virtual ~Serializable() = default;

    /// Travels as 16 bits in every frame and file header.
    virtual unsigned int getTypeId() const = 0;
    virtual rktl::String getTypeName() const = 0;

    /// toXML(getTypeName()). A class that overrides the other form says `using rksl::Serializable::toXML;`.
    virtual rktl::String toXML() const;

    /// One element called tag; null gives an empty text. Throws rktl::Exception where a type has no XML form.
    virtual rktl::String toXML(char const* tag) const = 0;

    /// Reads what toXML wrote, whatever the element is called. False: xml was no such element.
    virtual bool fromXML(char const* xml) = 0;

    /// Bytes of the body that toBin writes, headers excluded.
    virtual unsigned int getBinLength() const = 0;

    /// Writes the body to out, which has room for getBinLength() bytes. Returns the bytes written.
    virtual unsigned int toBin(unsigned char* out) const = 0;

    /// Overwrites the whole object from a body of at most length bytes. Returns the bytes consumed, never more than length.
    /// Throws rktl::Exception for bytes that are no such body; the object is then cleared or partly filled.
    virtual unsigned int fromBin(unsigned char const* in, unsigned int length) = 0;

    /// File form: u16 type id, u32 body length, body. False when the file cannot be written or the body cannot be made.
    virtual bool toFile(char const* path) const;

    /// False when the file cannot be read, holds another type, or is not used up exactly by fromBin; never throws.
    virtual bool fromFile(char const* path);

protected:
    Serializable() = default;
    Serializable(Serializable const&) = default;
    Serializable& operator=(Serializable const&) = default;
};

} // namespace rksl
