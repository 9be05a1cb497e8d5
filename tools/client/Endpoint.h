#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tools {

/// A connection that cannot be made, or that broke: another try may do better.
class ConnectionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where a server listens.
struct Endpoint {
    std::string host; // a name or an address
    uint16_t port = 0;

    /// "camera:8554", "192.0.2.7:8554" or "[2001:db8::7]:8554". Throws std::runtime_error for anything else.
    static Endpoint parse(std::string const& text);

    /// As parse takes it.
    std::string text() const;

    /// A connected socket, which is the caller's. Tries each address of the host, up to 5 seconds each. Throws ConnectionError.
    int connect() const;
};

} // namespace tools
