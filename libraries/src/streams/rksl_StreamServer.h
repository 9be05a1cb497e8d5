#pragma once

#include "sync/rkst_Vault.h"

namespace rksl {

class StreamListener;

/// Something that connections come from. Any thread may set the listener; the rest is the owner's.
class StreamServer {
public:
    StreamServer();
    virtual ~StreamServer() = default;
    StreamServer(StreamServer const&) = delete;
    StreamServer& operator=(StreamServer const&) = delete;

    /// Starts to accept. False when it does already, or cannot.
    virtual bool listen() = 0;

    /// When it returns, the listener is no longer called. False when that could not be had in time.
    virtual bool stopListening() = 0;

    virtual bool isListening() const = 0;

    /// listener: not owned; null drops what connects. False when the present one was busy for 15 seconds.
    bool setStreamListener(StreamListener* listener);

protected:
    static constexpr unsigned int listenerLimit = 15000; // ms

    rkst::Vault<StreamListener*> mListener;
};

} // namespace rksl
