#pragma once

#include "misc/rktl_Exception.h"
#include "streams/rksl_Serializable.h"

#include <bit>
#include <cstdint>
#include <type_traits>

namespace rksl {

/// Reads little-endian values one behind the other from a block of bytes that is not owned, on any host, at any alignment.
/// Whatever does not fit in what is left throws rktl::Exception "rksl::Serializable::fromBin() - Failed!"; nothing is ever
/// read behind the end of the block.
class ByteReader {
public:
    ByteReader(unsigned char const* data, unsigned int length)
        : mData(data)
        , mLength(length)
    {
    }

    /// Bytes read so far.
    unsigned int position() const { return mPosition; }
    unsigned int remaining() const { return mLength - mPosition; }

    uint8_t u8() { return *bytes(1); }
    uint16_t u16() { return number<uint16_t>(); }
    uint32_t u32() { return number<uint32_t>(); }
    int32_t i32() { return static_cast<int32_t>(number<uint32_t>()); }
    int64_t i64() { return static_cast<int64_t>(number<uint64_t>()); }
    float f32() { return std::bit_cast<float>(number<uint32_t>()); }
    double f64() { return std::bit_cast<double>(number<uint64_t>()); }

    /// The next count bytes, as they stand in the block.
    unsigned char const* bytes(unsigned int count)
    {
        if (count > remaining())
            fail();
        unsigned char const* const start = mData + mPosition;
        mPosition += count;
        return start;
    }

    /// A count of items of which each takes at least bytesEach bytes (at least 1): refused when they cannot be there.
    uint32_t count(unsigned int bytesEach)
    {
        uint32_t const items = u32();
        if (items > remaining() / bytesEach)
            fail();
        return items;
    }

    /// A member in its own binary form.
    void record(Serializable& member)
    {
        unsigned int const used = member.fromBin(mData + mPosition, remaining());
        bytes(used);
    }

    [[noreturn]] static void fail() { throw rktl::Exception("rksl::Serializable::fromBin() - Failed!"); }

private:
    template <class T> T number()
    {
        static_assert(std::is_unsigned_v<T>);
        unsigned char const* const in = bytes(sizeof(T));
        T value = 0;
        for (unsigned int i = 0; i < sizeof(T); ++i)
            value = static_cast<T>(value | static_cast<T>(in[i]) << (8 * i));
        return value;
    }

    unsigned char const* mData;
    unsigned int mLength;
    unsigned int mPosition = 0;
};

} // namespace rksl
