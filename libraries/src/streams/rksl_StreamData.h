#pragma once

#include "misc/rktl_SmartArray.h"

#include <cstdint>

namespace rksl {

class Serializable;

/// One frame, ready to send. Copies share the bytes, so one serialised object can wait in the queues of many connections.
/// Not synchronised; once it is in a queue nobody changes it any more.
class StreamData {
public:
    using SmartBuffer = rktl::SmartArray<unsigned char>;

    StreamData() = default;

    /// Takes over a whole frame, which came from new[].
    StreamData(unsigned char* frame, uint32_t length);

    /// Becomes the frame of object, in the buffer that it has where that is large enough. False when object does not write
    /// the length that it announced, raises, or makes a frame of 4 GiB or more; the bytes are then of no use.
    bool fromObj(Serializable const& object);

    unsigned char const* getBytes() const { return mBuffer.get(); }

    /// Bytes of the frame, header included.
    uint32_t getLength() const { return mLength; }

    /// Type id of the object; there has to be a frame.
    uint16_t getType() const;

private:
    SmartBuffer mBuffer;
    uint32_t mLength = 0;
};

} // namespace rksl
