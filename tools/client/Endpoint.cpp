#include "Endpoint.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tools {

namespace {

constexpr int CONNECT_LIMIT = 5000; // ms for each address

/// 0 or the errno of the failure.
int connectWithin(int socket, addrinfo const& address, int milliseconds)
{
    if (::connect(socket, address.ai_addr, address.ai_addrlen) == 0)
        return 0;
    if (errno != EINPROGRESS)
        return errno;
    pollfd descriptor = {socket, POLLOUT, 0};
    int const ready = ::poll(&descriptor, 1, milliseconds);
    if (ready <= 0)
        return ready == 0 ? ETIMEDOUT : errno;
    int error = 0;
    socklen_t length = sizeof(error);
    getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
}

/// The connected socket, or -1 and the errno in error.
int connectTo(addrinfo const& address, int& error)
{
    int const socket = ::socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, address.ai_protocol);
    error = socket < 0 ? errno : connectWithin(socket, address, CONNECT_LIMIT);
    if (error == 0)
        return socket;
    if (socket >= 0)
        ::close(socket);
    return -1;
}

} // namespace

Endpoint Endpoint::parse(std::string const& text)
{
    Endpoint endpoint;
    size_t const colon = text.rfind(':');
    if (colon != std::string::npos) {
        endpoint.host = text.substr(0, colon);
        if (endpoint.host.size() > 2 && endpoint.host.front() == '[' && endpoint.host.back() == ']')
            endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
        else if (endpoint.host.find(':') != std::string::npos)
            endpoint.host.clear();
        char const* const end = text.data() + text.size();
        auto const number = std::from_chars(text.data() + colon + 1, end, endpoint.port);
        if (number.ec != std::errc() || number.ptr != end)
            endpoint.port = 0;
    }
    if (endpoint.host.empty() || endpoint.port == 0)
        throw std::runtime_error("expected HOST:PORT, such as camera:8554 or [2001:db8::7]:8554, not \"" + text + "\"");
    return endpoint;
}

std::string Endpoint::text() const
{
    std::string const name = host.find(':') == std::string::npos ? host : "[" + host + "]";
    return name + ":" + std::to_string(port);
}

int Endpoint::connect() const
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (int const failure = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found))
        throw ConnectionError("cannot find " + host + ": " + gai_strerror(failure));
    std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> const addresses(found, &freeaddrinfo);
    int error = 0;
    for (addrinfo const* address = found; address; address = address->ai_next)
        if (int const socket = connectTo(*address, error); socket >= 0)
            return socket;
    throw ConnectionError("cannot connect to " + text() + ": " + std::strerror(error));
}

} // namespace tools
