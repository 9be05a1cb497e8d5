#pragma once

#include "ObjectSource.h"

#include <atomic>

class Frame;
class Heartbeat;

namespace tools {

/// Who is told what a server sends.
class Receiver {
public:
    virtual ~Receiver() = default;

    /// Each object before it is decoded.
    virtual void onObject(rksl::StreamData const&) { }
    /// False when that was enough.
    virtual bool onFrame(Frame&) { return true; }
    virtual void onHeartbeat(Heartbeat const&) { }
    /// Nothing came for a moment.
    virtual void onIdle() { }
};

enum class Outcome {
    enough,  // for the receiver
    ended,   // by the source
    stopped, // by the user
};

/// Hands on what source gives until one of these happens. Objects of other kinds are passed over; a result that is a refusal
/// is thrown as std::runtime_error, and so is an object that cannot be read.
Outcome follow(ObjectSource& source, Receiver& receiver, std::atomic<bool> const& stop);

/// Reads the body of a frame. Throws std::runtime_error.
void decode(rksl::StreamData const& frame, rksl::Serializable& object);

} // namespace tools
