#pragma once

#include "support/bytes.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

/// Connections of this machine with itself, seen from their bare end: bytes go out and come in, each with a limit.
namespace support {

class Connection {
public:
    explicit Connection(int socket = -1)
        : mSocket(socket)
    {
    }

    Connection(Connection&& other) noexcept
        : mSocket(std::exchange(other.mSocket, -1))
    {
    }
    Connection& operator=(Connection&& other) noexcept
    {
        std::swap(mSocket, other.mSocket);
        return *this;
    }
    ~Connection() { close(); }

    /// To a port of this machine; not open when nobody listens.
    static Connection to(uint16_t port)
    {
        int const socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        if (::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0)
            return Connection(socket);
        ::close(socket);
        return Connection();
    }

    /// Tries until somebody listens.
    static Connection toWithin(uint16_t port, int milliseconds)
    {
        auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        for (;;) {
            Connection connection = to(port);
            if (connection.isOpen() || std::chrono::steady_clock::now() > end)
                return connection;
            ::poll(nullptr, 0, 5);
        }
    }

    bool isOpen() const { return mSocket != -1; }
    int release() { return std::exchange(mSocket, -1); }

    void close()
    {
        if (mSocket != -1)
            ::close(mSocket);
        mSocket = -1;
    }

    /// Gone at once, with a reset.
    void reset()
    {
        linger const none = {1, 0};
        setsockopt(mSocket, SOL_SOCKET, SO_LINGER, &none, sizeof(none));
        close();
    }

    /// False when the peer is gone or does not take the bytes in time.
    bool send(Bytes const& bytes, int milliseconds = 5000) const
    {
        for (size_t sent = 0; sent < bytes.size();) {
            if (!ready(POLLOUT, milliseconds))
                return false;
            ssize_t const count = ::send(mSocket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno != EAGAIN)
                return false;
            sent += count > 0 ? size_t(count) : 0;
        }
        return true;
    }

    /// count bytes, or those that came before the end or the limit.
    Bytes receive(size_t count, int milliseconds = 5000) const
    {
        Bytes bytes(count);
        size_t received = 0;
        while (received < count && ready(POLLIN, milliseconds)) {
            ssize_t const more = ::recv(mSocket, bytes.data() + received, count - received, 0);
            if (more <= 0)
                break;
            received += size_t(more);
        }
        bytes.resize(received);
        return bytes;
    }

    /// One frame: eight bytes of header and the body that they announce; less when it did not come.
    Bytes receiveFrame(int milliseconds = 5000) const
    {
        Bytes frame = receive(8, milliseconds);
        if (frame.size() < 8)
            return frame;
        Bytes const body = receive(frame[4] | frame[5] << 8 | frame[6] << 16 | frame[7] << 24, milliseconds);
        frame.insert(frame.end(), body.begin(), body.end());
        return frame;
    }

    /// Drops what has come so far. True when the peer is gone.
    bool drain() const
    {
        unsigned char block[65536];
        ssize_t count;
        while ((count = ::recv(mSocket, block, sizeof(block), MSG_DONTWAIT)) > 0) { }
        return count == 0 || errno != EAGAIN;
    }

    /// Whether the peer closes or resets within the limit; what comes before that is dropped.
    bool waitForEnd(int milliseconds = 5000) const
    {
        unsigned char block[4096];
        while (ready(POLLIN, milliseconds))
            if (::recv(mSocket, block, sizeof(block), 0) <= 0)
                return true;
        return false;
    }

private:
    bool ready(short events, int milliseconds) const
    {
        pollfd descriptor = {mSocket, events, 0};
        return ::poll(&descriptor, 1, milliseconds) > 0;
    }

    int mSocket;
};

/// Two ends of one connection.
struct ConnectedPair {
    ConnectedPair()
    {
        int ends[2];
        EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends));
        ours = ends[0];
        peer = Connection(ends[1]);
    }

    int ours; // for a stream, which owns it
    Connection peer;
};

/// A socket that occupies a port of this machine, chosen by the system, until it goes.
class OccupiedPort {
public:
    OccupiedPort()
        : mSocket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        socklen_t length = sizeof(address);
        EXPECT_EQ(0, bind(mSocket, reinterpret_cast<sockaddr*>(&address), length));
        EXPECT_EQ(0, listen(mSocket, 1));
        getsockname(mSocket, reinterpret_cast<sockaddr*>(&address), &length);
        mPort = ntohs(address.sin_port);
    }
    ~OccupiedPort() { free(); }
    OccupiedPort(OccupiedPort const&) = delete;
    OccupiedPort& operator=(OccupiedPort const&) = delete;

    uint16_t port() const { return mPort; }

    /// Whoever connects next; not open when nobody does within 5 seconds.
    Connection accept() const
    {
        pollfd descriptor = {mSocket, POLLIN, 0};
        return Connection(::poll(&descriptor, 1, 5000) > 0 ? ::accept(mSocket, nullptr, nullptr) : -1);
    }

    void free()
    {
        if (mSocket != -1)
            ::close(mSocket);
        mSocket = -1;
    }

private:
    int mSocket;
    uint16_t mPort = 0;
};

/// A port that was free a moment ago.
inline uint16_t freePort()
{
    return OccupiedPort().port();
}

} // namespace support
