#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"

#include <cstdint>
#include <memory>

namespace rktl {

/// A growing array of bytes that can serialise itself. Bytes that nobody wrote are 0. Growth beyond 4 GiB throws
/// rktl::Exception.
class Buffer : public rksl::Serializable {
public:
    Buffer() = default;
    explicit Buffer(unsigned int size); ///< size bytes of 0, in use
    Buffer(unsigned char const* data, unsigned int size);
    Buffer(Buffer const& other);
    Buffer& operator=(Buffer const& other);

    /// Null while nothing was ever stored. Valid until the next growth.
    unsigned char* data() { return mData.get(); }
    unsigned char const* data() const { return mData.get(); }
    unsigned int size() const { return mSize; } ///< bytes in use
    unsigned int capacity() const { return mCapacity; }
    bool empty() const { return mSize == 0; }

    /// Makes room for size bytes behind offset and gives the address of that offset. The bytes in use stay, and stay the
    /// same number: whoever writes there calls resize.
    unsigned char* reserve(unsigned int size, unsigned int offset);

    /// data may lie in this buffer.
    void set(unsigned char const* data, unsigned int size);
    void append(unsigned char const* data, unsigned int size);

    /// target: room for size() bytes.
    void copy(unsigned char* target) const;

    /// The bytes up to size stay.
    void resize(unsigned int size);
    void resize(unsigned int size, unsigned char value); ///< all bytes become value

    /// Base64, and back. fromString replaces the bytes; true for an empty text, and when any bytes were decoded.
    String toString() const;
    bool fromString(String const& text);

    /// The bytes as they are.
    String rawString() const;

    bool operator==(Buffer const& other) const;

    /// Binary form: u32 size, bytes. XML form: an element with the attribute encoding="base64". Null tag: "".
    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// The file holds the bare bytes.
    bool toFile(char const* path) const override;
    bool fromFile(char const* path) override;

private:
    std::unique_ptr<unsigned char[]> mData;
    uint32_t mSize = 0;
    uint32_t mCapacity = 0;
};

} // namespace rktl
