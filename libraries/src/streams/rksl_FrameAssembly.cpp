#include "streams/rksl_FrameAssembly.h"

#include "streams/rksl_EndOfFile.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace rksl {

namespace {

constexpr uint32_t firstBlock = 64u << 10; // bytes

std::atomic<uint64_t> held = 0; // bytes of all bodies

} // namespace

FrameAssembly::~FrameAssembly()
{
    releaseBody();
}

std::span<unsigned char> FrameAssembly::room()
{
    if (mReceived == 0 && mCapacity > keptMemory)
        releaseBody();
    if (!hasHeader())
        return std::span(mHeader).subspan(mReceived);
    if (isWhole() || isRefused())
        return {};
    uint32_t const length = getHeader().bodyLength;
    uint32_t const received = mReceived - FrameHeader::size;
    if (received == mCapacity && !growBody(received, length))
        return {};
    return {mBody.get() + received, std::min(length, mCapacity) - received};
}

bool FrameAssembly::isWhole() const
{
    return hasHeader() && (getType() == EndOfFile::typeId || mReceived - FrameHeader::size == getHeader().bodyLength);
}

bool FrameAssembly::growBody(uint32_t received, uint32_t length)
{
    uint32_t const capacity = std::min(length, std::max(firstBlock, 2 * mCapacity));
    uint32_t const more = capacity - mCapacity;
    bool const mayHold = held.fetch_add(more) + more <= maxMemory;
    std::unique_ptr<unsigned char[]> grown(mayHold ? new (std::nothrow) unsigned char[capacity] : nullptr);
    mLacksMemory = !grown;
    if (mLacksMemory) {
        held -= more;
        return false;
    }
    if (received)
        std::memcpy(grown.get(), mBody.get(), received);
    mBody = std::move(grown);
    mCapacity = capacity;
    return true;
}

void FrameAssembly::releaseBody()
{
    held -= mCapacity;
    mBody.reset();
    mCapacity = 0;
}

} // namespace rksl
