#pragma once

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <cstdint>

namespace rksl {

/// What stands in front of each object of a stream, in memory, in files and on the wire: u16 type id, u16 reserved (written as
/// 0, ignored on reading), u32 length of the body that follows; little-endian.
struct FrameHeader {
    static constexpr unsigned int size = 8; ///< bytes

    uint16_t type = 0;
    uint32_t bodyLength = 0; ///< bytes

    /// bytes: size of them.
    static FrameHeader read(unsigned char const* bytes)
    {
        ByteReader reader(bytes, size);
        FrameHeader header;
        header.type = reader.u16();
        reader.u16();
        header.bodyLength = reader.u32();
        return header;
    }

    /// out: room for size bytes.
    void write(unsigned char* out) const
    {
        ByteWriter writer(out);
        writer.u16(type);
        writer.u16(0);
        writer.u32(bodyLength);
    }
};

} // namespace rksl
