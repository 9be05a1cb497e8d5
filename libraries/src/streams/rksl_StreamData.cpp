#include "streams/rksl_StreamData.h"

#include "streams/rksl_FrameHeader.h"

#include <exception>
#include <limits>

namespace rksl {

StreamData::StreamData(unsigned char* frame, uint32_t length)
    : mBuffer(frame, length)
    , mLength(length)
{
}

bool StreamData::fromObj(Serializable const& object)
try {
    uint32_t const bodyLength = object.getBinLength();
    if (bodyLength > std::numeric_limits<uint32_t>::max() - FrameHeader::size)
        return false;
    mLength = FrameHeader::size + bodyLength;
    if (mBuffer.size() < mLength)
        mBuffer = SmartBuffer(new unsigned char[mLength], mLength);
    FrameHeader{static_cast<uint16_t>(object.getTypeId()), bodyLength}.write(mBuffer.get());
    return object.toBin(mBuffer.get() + FrameHeader::size) == bodyLength;
} catch (std::exception const&) {
    return false;
}

uint16_t StreamData::getType() const
{
    return FrameHeader::read(mBuffer.get()).type;
}

} // namespace rksl
