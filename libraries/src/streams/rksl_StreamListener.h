#pragma once

namespace rktl {
template <class T> class SmartPtr;
}

namespace rksl {

class IOStream;

/// Whoever takes the connections that a server accepts.
class StreamListener {
public:
    virtual ~StreamListener() = default;

    /// Called on the server's thread for each new connection; until it returns, no further one is accepted. False: the stream
    /// was not taken, and ends with the caller's reference.
    virtual bool addStream(rktl::SmartPtr<IOStream>& stream) = 0;
};

} // namespace rksl
