#pragma once

#include "streams/rksl_Serializable.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace rksl {

/// Writes little-endian values one behind the other, on any host, at any alignment. The block is the caller's and has room
/// for all that is written: getBinLength() says how much that is.
class ByteWriter {
public:
    explicit ByteWriter(unsigned char* out)
        : mOut(out)
    {
    }

    /// Bytes written so far.
    unsigned int written() const { return mWritten; }

    void u8(uint8_t value) { mOut[mWritten++] = value; }
    void u16(uint16_t value) { number(value); }
    void u32(uint32_t value) { number(value); }
    void i32(int32_t value) { number(static_cast<uint32_t>(value)); }
    void i64(int64_t value) { number(static_cast<uint64_t>(value)); }
    void f32(float value) { number(std::bit_cast<uint32_t>(value)); }
    void f64(double value) { number(std::bit_cast<uint64_t>(value)); }

    void bytes(void const* data, unsigned int count)
    {
        if (count)
            std::memcpy(mOut + mWritten, data, count);
        mWritten += count;
    }

    /// A member in its own binary form.
    void record(Serializable const& member) { mWritten += member.toBin(mOut + mWritten); }

private:
    template <class T> void number(T value)
    {
        static_assert(std::is_unsigned_v<T>);
        for (unsigned int i = 0; i < sizeof(T); ++i)
            mOut[mWritten++] = static_cast<unsigned char>(value >> (8 * i));
    }

    unsigned char* mOut;
    unsigned int mWritten = 0;
};

} // namespace rksl
