#include "streams/rksl_NetIOStream.h"

#include "misc/rk_clock.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rk_socket.h"
#include "streams/rksl_EndOfFile.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_MutexLock.h"
#include "sync/rkst_Wait.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include <poll.h>
#include <sys/socket.h>

namespace rksl {

namespace {

constexpr unsigned int idleTimeOut = 60000;    // ms
constexpr unsigned int socketLimit = 5000;     // ms, for the socket mutex
constexpr unsigned int eofLimit = 15000;       // ms, until our end of file left
constexpr unsigned int peerEofLimit = 7500;    // ms
constexpr unsigned int pumpStopLimit = 15000;  // ms
constexpr uint32_t stallLimit = 15000;         // ms without a byte in the middle of a frame
constexpr int waitSlice = 50;                  // ms, after which a waiting thread looks whether it is to end
constexpr uint32_t receiveSlice = 1024 * 1024; // bytes that one look at a connection takes at most

[[noreturn]] void raise(std::string const& message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/streams/rksl_NetIOStream", "rksl::NetIOStream", message, line);
}

bool isTemporary(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

NetIOStream::NetIOStream(int socket, unsigned int queueSize)
    : rktl::CircularMessagePump<StreamData>(idleTimeOut)
    , mSocket(socket)
{
    reserve(queueSize);
    if (!start())
        mFailed.signal();
}

NetIOStream::~NetIOStream() noexcept
{
    close();
    stop(pumpStopLimit);
}

// ---- Reading ----

bool NetIOStream::isEmpty() const
{
    if (mFrame.isWhole())
        return false;
    int error = 0;
    poll(mSocket, true, error);
    if (mSocket == -1)
        raise("isEmpty( ) - failed");
    if (error)
        raise("isEmpty( ) - socket error");
    return receive() == State::open && !mFrame.isWhole() && !mFrame.isRefused();
}

unsigned int NetIOStream::getNextType() const
{
    if (mSocket == -1)
        return EndOfFile::typeId;
    if (!blockingPeek())
        refuse("getNextType( )", "failed");
    return mFrame.getType();
}

unsigned int NetIOStream::read(Serializable& object)
{
    uint32_t const length = readObject();
    FrameHeader const header = mFrame.getHeader();
    mFrame.clear(); // the body stays until more is received
    if (header.type != object.getTypeId())
        raise(rktl::String::fromFormat("read() - The read object id does not match the Serializable's object id:  %d != %d",
            header.type, object.getTypeId()));
    try {
        object.fromBin(mFrame.getBody(), header.bodyLength);
    } catch (std::exception const&) {
        raise("read() - Unable to set the serializable object's data");
    }
    return length;
}

unsigned int NetIOStream::skip()
{
    uint32_t const length = readObject();
    mFrame.clear();
    return length;
}

NetIOStream& NetIOStream::operator>>(Serializable& object)
{
    read(object);
    return *this;
}

bool NetIOStream::readNextObject(unsigned char*& data, unsigned int& length)
{
    while (isEmpty())
        waitReady(POLLIN);
    uint32_t const frameLength = readObject();
    std::unique_ptr<unsigned char[]> frame(new unsigned char[frameLength]);
    FrameHeader const header = mFrame.getHeader();
    header.write(frame.get());
    if (header.bodyLength)
        std::memcpy(frame.get() + FrameHeader::size, mFrame.getBody(), header.bodyLength);
    mFrame.clear();
    data = frame.release();
    length = frameLength;
    return true;
}

/// Has the next frame whole in mFrame. Returns its bytes.
uint32_t NetIOStream::readObject()
{
    checkOpen("readObject( ) - invalid socket");
    if (getNextType() == EndOfFile::typeId)
        raise("readObject( ) - trying to read EOF");
    if (!blockingRead())
        refuse("readObject( )", mFrame.hasHeader() ? "failed" : "couldn't read type");
    return mFrame.getReceived();
}

/// Why a frame did not come.
void NetIOStream::refuse(char const* operation, char const* reason) const
{
    mFailed.signal();
    rktl::String text(reason);
    if (mFrame.isRefused())
        text = rktl::String::fromFormat("a frame of %u bytes, header not counted, is %s", mFrame.getHeader().bodyLength,
            mFrame.isTooLong() ? "too long" : "more than the memory for connections allows");
    else if (mState == State::stalled)
        text = "stalled in mid-frame";
    raise(operation + (" - " + text));
}

void NetIOStream::checkOpen(char const* failure) const
{
    if (mSocket == -1)
        raise(failure);
}

/// Until the type of the next frame is there; false when it does not come.
bool NetIOStream::blockingPeek() const
{
    while (!mFrame.hasType() && receive() == State::open && !mFrame.hasType())
        waitReady(POLLIN);
    return mFrame.hasType();
}

/// Until the next frame is whole; false when that does not happen.
bool NetIOStream::blockingRead() const
{
    while (!mFrame.isWhole() && !mFrame.isRefused() && receive() == State::open && !mFrame.isWhole())
        waitReady(POLLIN);
    return mFrame.isWhole();
}

/// Takes what has come of the next frame, without waiting for more.
NetIOStream::State NetIOStream::receive() const
{
    if (mState != State::open)
        return mState;
    uint32_t const before = mFrame.getReceived();
    Transfer last = Transfer::done;
    while (last == Transfer::done && mFrame.getReceived() - before < receiveSlice)
        last = receiveSome();
    if (mFrame.getReceived() > before)
        mLastByteTick = rk_tickcount();
    if (last == Transfer::failed)
        mState = State::ended;
    else if (mFrame.getReceived() > 0 && !mFrame.isWhole() && rk_tickcount() - mLastByteTick >= stallLimit)
        mState = State::stalled;
    return mState;
}

NetIOStream::Transfer NetIOStream::receiveSome() const
{
    std::span<unsigned char> const room = mFrame.room();
    if (room.empty())
        return Transfer::nothing;
    rkst::MutexLock const lock(mSocketMutex, socketLimit);
    if (!lock || mSocket == -1)
        return Transfer::failed;
    ssize_t const count = recv(mSocket, room.data(), room.size(), MSG_DONTWAIT);
    if (count <= 0)
        return count < 0 && isTemporary(errno) ? Transfer::nothing : Transfer::failed;
    mFrame.add(static_cast<uint32_t>(count));
    return Transfer::done;
}

// ---- Writing ----

unsigned int NetIOStream::write(Serializable const& object)
{
    checkOpen("write() - Trying to write to an invalid socket.");
    std::unique_ptr<StreamData> frame(new StreamData);
    if (!frame->fromObj(object))
        raise("write() - obj.toBin() failed");
    return write(rktl::ConstSmartPtr<StreamData>(frame.release()));
}

unsigned int NetIOStream::write(rktl::ConstSmartPtr<StreamData> const& data)
{
    push(data);
    return data->getLength();
}

NetIOStream& NetIOStream::operator<<(Serializable const& object)
{
    write(object);
    return *this;
}

NetIOStream& NetIOStream::operator<<(IStream& source)
{
    checkOpen("streamToStream( ) - invalid socket");
    unsigned char* frame = nullptr;
    unsigned int length = 0;
    if (getNextObject(source, frame, length))
        write(rktl::ConstSmartPtr<StreamData>(new StreamData(frame, length)));
    return *this;
}

bool NetIOStream::sendEOF()
{
    mEOFSent.reset();
    write(EndOfFile());
    rkst::WaitObject* const either[] = {&mEOFSent, &mFailed};
    unsigned int first = 0;
    return rkst::Wait(either, eofLimit, first) && either[first] == &mEOFSent;
}

void NetIOStream::pump()
try {
    while (rktl::ConstSmartPtr<StreamData> const frame = peek()) {
        if (mSocket == -1 || mEOFSent.wait(0) || mFailed.wait(0))
            return;
        if (!blockingWrite(frame->getBytes(), frame->getLength())) {
            mFailed.signal();
            return;
        }
        pop(frame);
        if (frame->getType() == EndOfFile::typeId)
            mEOFSent.signal();
    }
} catch (std::exception const&) {
    // The next frame or the idle time-out tries again.
}

/// False when the connection breaks or the pump is to end.
bool NetIOStream::blockingWrite(unsigned char const* data, uint32_t length) const
{
    while (length > 0) {
        if (mFailed.wait(0) || mStopEvent.wait(0))
            return false;
        rkst::MutexLock lock(mSocketMutex, socketLimit);
        if (!lock || mSocket == -1)
            return false;
        ssize_t const count = send(mSocket, data, length, MSG_DONTWAIT | MSG_NOSIGNAL);
        int const error = errno;
        lock.unlock();
        if (count > 0) {
            data += count;
            length -= static_cast<uint32_t>(count);
        } else if (count == 0 || !isTemporary(error)) {
            return false;
        } else {
            waitReady(POLLOUT);
        }
    }
    return true;
}

/// Sleeps until the socket is ready, or a moment at most. Without the mutex: a socket that is closed meanwhile is noticed by
/// the next transfer, and nothing is done to whatever has its number by then.
void NetIOStream::waitReady(short events) const
{
    pollfd descriptor = {mSocket, events, 0};
    ::poll(&descriptor, 1, waitSlice);
}

bool NetIOStream::poll(int socket, bool forRead, int& error)
{
    pollfd descriptor = {socket, short(forRead ? POLLIN : POLLOUT), 0};
    int const ready = ::poll(&descriptor, 1, 0);
    error = ready < 0 ? errno : descriptor.revents & POLLNVAL ? EBADF : 0;
    return ready > 0 && error == 0;
}

// ---- The end ----

void NetIOStream::close()
{
    if (mSocket == -1)
        return;
    try {
        bool const peerEnded = isEOF();
        if (!mFailed.wait(0) && sendEOF() && !peerEnded)
            awaitPeerEOF();
    } catch (std::exception const&) {
        // The connection is broken; there is nobody to wait for.
    }
    stop(pumpStopLimit); // before the socket is locked, which the pump may be waiting for
    rkst::MutexLock const lock(mSocketMutex, socketLimit);
    rk_close_socket(mSocket.exchange(-1));
    mFrame.clear();
    mEOFSent.reset();
}

void NetIOStream::awaitPeerEOF()
{
    for (rkst::Deadline const deadline(peerEofLimit); deadline.remaining() > 0 && !mFailed.wait(0);) {
        if (isEmpty())
            waitReady(POLLIN);
        else if (isEOF())
            return;
        else
            skip();
    }
}

void NetIOStream::abort()
{
    mFailed.signal();
    rkst::MutexLock const lock(mSocketMutex, socketLimit);
    if (mSocket != -1)
        shutdown(mSocket, SHUT_RDWR);
}

bool NetIOStream::start()
{
    return rktl::CircularMessagePump<StreamData>::start();
}

bool NetIOStream::stop(unsigned int ms)
{
    return stop(rktl::ElapsedTime(int64_t(ms)));
}

} // namespace rksl
