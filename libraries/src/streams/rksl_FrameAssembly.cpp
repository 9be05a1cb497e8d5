#include "streams/rksl_FrameAssembly.h"

#include "streams/rksl_EndOfFile.h"

#include <algorithm>
#include <cstring>

namespace rksl {

namespace {

constexpr uint32_t firstBlock = 64u << 10; // bytes

} // namespace

std::span<unsigned char> FrameAssembly::room()
{
    if (!hasHeader())
        return std::span(mHeader).subspan(mReceived);
    if (isWhole() || isTooLong())
        return {};
    uint32_t const length = getHeader().bodyLength;
    uint32_t const received = mReceived - FrameHeader::size;
    if (received == mCapacity)
        growBody(received, length);
    return {mBody.get() + received, std::min(length, mCapacity) - received};
}

bool FrameAssembly::isWhole() const
{
    return hasHeader() && (getType() == EndOfFile::typeId || mReceived - FrameHeader::size == getHeader().bodyLength);
}

void FrameAssembly::growBody(uint32_t received, uint32_t length)
{
    uint32_t const capacity = std::min(length, std::max(firstBlock, 2 * mCapacity));
    std::unique_ptr<unsigned char[]> grown(new unsigned char[capacity]);
    if (received)
        std::memcpy(grown.get(), mBody.get(), received);
    mBody = std::move(grown);
    mCapacity = capacity;
}

} // namespace rksl
