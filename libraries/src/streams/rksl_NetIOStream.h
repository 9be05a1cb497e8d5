#pragma once

#include "misc/rktl_MessagePump.h"
#include "streams/rksl_FrameAssembly.h"
#include "streams/rksl_IOStream.h"
#include "streams/rksl_StreamData.h"
#include "sync/rkst_Event.h"
#include "sync/rkst_Mutex.h"

#include <atomic>
#include <cstdint>

namespace rksl {

/// An object stream over a connected TCP socket: frames back to back in both directions, with no greeting. What is written
/// waits in a ring that a thread of the stream's own (the pump) empties, so that writing never blocks: a peer that reads too
/// slowly loses the oldest frames. What is read is put together here from whatever pieces arrive: to isEmpty and isEOF a frame
/// exists when all of it is here.
///
/// Threads: one reads, any may write, the owner closes when nobody else uses the stream any more.
///
/// A peer that closed or reset, stopped for 15 seconds in the middle of a frame, or announced one of more than
/// FrameAssembly::maxFrame bytes shows as not empty, and the next read throws. Errors are rktl::Exception with the class
/// "rksl::NetIOStream"; after an error of reading nothing but a close makes sense. Nothing raises SIGPIPE.
class NetIOStream : public IOStream, public rktl::CircularMessagePump<StreamData> {
public:
    /// socket: connected; owned from now on. queueSize: frames that may wait for the pump, which starts at once.
    NetIOStream(int socket, unsigned int queueSize);

    /// close.
    ~NetIOStream() noexcept override;

    // ---- Reading ----

    /// Blocks until two bytes are there. 1 (end of file) on a stream that was closed here.
    unsigned int getNextType() const override;
    bool isEmpty() const override;

    /// These block until the frame is whole. A frame of another type than object's is taken, and the exception tells both. An
    /// end of file is refused and stays.
    unsigned int read(Serializable& object) override;
    unsigned int skip() override;
    NetIOStream& operator>>(Serializable& object) override;
    bool readNextObject(unsigned char*& data, unsigned int& length) override;

    // ---- Writing: returns when the frame is in the queue ----

    void flush() override { }
    unsigned int write(Serializable const& object) override;
    /// A frame that may be in other queues, too. Returns its bytes.
    virtual unsigned int write(rktl::ConstSmartPtr<StreamData> const& data);
    NetIOStream& operator<<(Serializable const& object) override;
    NetIOStream& operator<<(IStream& source) override;

    /// Ends our half behind all that is queued, and waits up to 15 seconds until that was sent. False when it was not.
    bool sendEOF();

    // ---- The end ----

    /// The orderly end: our end of file, up to 7.5 seconds for that of the peer unless it is here already, what else comes
    /// being dropped; then the socket is closed. On a connection that is known to be broken nothing is waited for.
    void close() override;
    void abort() override;

    /// The pump alone.
    bool start() override;
    using rktl::CircularMessagePump<StreamData>::stop;
    virtual bool stop(unsigned int ms);

    /// Whether socket can be read from, or written to, without waiting. error: errno of a failure, else 0.
    static bool poll(int socket, bool forRead, int& error);

protected:
    void pump() override;

private:
    enum class State { open, ended, stalled };
    enum class Transfer { done, nothing, failed };

    State receive() const;
    Transfer receiveSome() const;
    bool blockingPeek() const;
    bool blockingRead() const;
    bool blockingWrite(unsigned char const* data, uint32_t length) const;
    void waitReady(short events) const;
    void awaitPeerEOF();
    uint32_t readObject();
    [[noreturn]] void refuse(char const* operation, char const* reason) const;
    void checkOpen(char const* failure) const;

    std::atomic<int> mSocket;        // -1: closed
    rkst::Mutex mSocketMutex{false}; // around each system call that moves bytes
    rkst::Event mEOFSent{true, false};
    rkst::Event mFailed{true, false}; // the connection broke

    // Of the thread that reads. An unfinished frame is not part of the stream's visible state.
    mutable FrameAssembly mFrame;
    mutable uint32_t mLastByteTick = 0; // ms
    mutable State mState = State::open;
};

} // namespace rksl
