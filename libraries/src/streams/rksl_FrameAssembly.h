#pragma once

#include "streams/rksl_FrameHeader.h"

#include <cstdint>
#include <memory>
#include <span>

namespace rksl {

/// The frame that is arriving on a connection: its header, then its body, in whatever pieces the network delivers them. Never
/// takes a byte of the next frame, never trusts the announced length with more memory than twice what has come of it (and
/// 64 KiB to begin with). An end-of-file frame is whole with its header. Belongs to the thread that reads the connection.
class FrameAssembly {
public:
    static constexpr uint32_t maxFrame = 64u << 20;   ///< bytes, header included; longer ones are not taken
    static constexpr uint64_t maxMemory = 128u << 20; ///< bytes that the frames arriving in this process may take in all
    static constexpr uint32_t keptMemory = 1u << 20;  ///< bytes that stay for the next frame

    FrameAssembly() = default;
    FrameAssembly(FrameAssembly const&) = delete;
    FrameAssembly& operator=(FrameAssembly const&) = delete;
    ~FrameAssembly();

    /// Where the next bytes go, at most that many; none when the frame is whole or refused. Good until the next call.
    std::span<unsigned char> room();

    /// count: bytes that were written to room().
    void add(uint32_t count) { mReceived += count; }

    /// Bytes so far, header included.
    uint32_t getReceived() const { return mReceived; }
    bool hasType() const { return mReceived >= 2; }
    bool hasHeader() const { return mReceived >= FrameHeader::size; }
    bool isWhole() const;
    bool isTooLong() const { return hasHeader() && getHeader().bodyLength > maxFrame - FrameHeader::size; }
    /// Too long, or more than the memory allows at the moment: the rest of it will not be taken.
    bool isRefused() const { return isTooLong() || mLacksMemory; }

    /// Right once hasType; the header once hasHeader; the body once isWhole, until the next call of room.
    uint16_t getType() const { return getHeader().type; }
    FrameHeader getHeader() const { return FrameHeader::read(mHeader); }
    unsigned char const* getBody() const { return mBody.get(); }

    /// Ready for the next frame.
    void clear() { mReceived = 0; }

private:
    bool growBody(uint32_t received, uint32_t length);
    void releaseBody();

    unsigned char mHeader[FrameHeader::size] = {};
    std::unique_ptr<unsigned char[]> mBody;
    uint32_t mCapacity = 0; // bytes of mBody
    uint32_t mReceived = 0; // bytes
    bool mLacksMemory = false;
};

} // namespace rksl
