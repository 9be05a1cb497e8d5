#include "streams/rksl_NetStreamServer.h"

#include "misc/rktl_ElapsedTime.h"
#include "streams/rk_socket.h"
#include "streams/rksl_NetIOStream.h"
#include "streams/rksl_StreamListener.h"

#include <exception>

#include <netinet/in.h>
#include <sys/socket.h>

namespace rksl {

namespace {

constexpr int backlog = 128;
constexpr unsigned int sendQueueFrames = 50;
constexpr int stopLimit = 15000; // ms

bool bindAndListen(int socket, uint16_t port)
{
    int const reuse = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(port);
    return bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0 && ::listen(socket, backlog) == 0;
}

} // namespace

NetStreamServer::NetStreamServer(unsigned short port, unsigned int, unsigned int, unsigned int tickMs)
    : rkst::WorkerThread(rktl::ElapsedTime(int64_t(tickMs)))
    , mPort(port)
{
}

NetStreamServer::~NetStreamServer() noexcept
{
    stopListening();
}

bool NetStreamServer::listen()
{
    return start();
}

bool NetStreamServer::stopListening()
{
    return stop(rktl::ElapsedTime(stopLimit));
}

bool NetStreamServer::isListening() const
{
    return !mNotRunningEvent.wait(0);
}

void NetStreamServer::onInitialize()
{
    // Without blocking: a connection may be gone between the poll and the accept.
    mSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (mSocket != -1 && !bindAndListen(mSocket, mPort))
        onDeinitialize();
}

void NetStreamServer::onDeinitialize()
{
    if (mSocket != -1)
        rk_close_socket(mSocket);
    mSocket = -1;
}

void NetStreamServer::onTimeOut()
{
    if (mSocket == -1) {
        onInitialize();
        return;
    }
    int error = 0;
    if (mStopEvent.wait(0) || !NetIOStream::poll(mSocket, true, error))
        return;
    int const connection = accept4(mSocket, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection != -1)
        handOver(connection);
}

void NetStreamServer::handOver(int connection)
try {
    rktl::SmartPtr<IOStream> stream(new NetIOStream(connection, sendQueueFrames));
    auto const listener = mListener.getWritePtr(listenerLimit);
    if (listener && *listener)
        (*listener)->addStream(stream);
} catch (std::exception const&) {
    // This connection is lost; the thread goes on, for the next may do better.
}

} // namespace rksl
