#pragma once

#include "Endpoint.h"
#include "Meridane/Subsystem/FrameRequest.h"
#include "ObjectSource.h"
#include "misc/rktl_url.h"
#include "streams/rksl_Command.h"
#include "streams/rksl_NetIOStream.h"
#include "streams/rksl_Result.h"

#include <deque>

namespace tools {

/// A connection to a server. Failures of the connection are thrown as ConnectionError; what the server refuses as
/// std::runtime_error.
class Session : public ObjectSource {
public:
    /// Connects, and waits for the server's first object, which has to be a heartbeat.
    explicit Session(Endpoint const& endpoint);

    /// The server's address for commands. camera: which of its cameras.
    rktl::url url(char const* camera) const;

    /// Sends; does not wait for what comes of it.
    void send(rksl::Serializable const& object);

    /// From now on the source gives frames. The answer comes among the objects.
    void requestFrames(FrameRequest const& request);

    /// Sends, and waits for the answer. What comes meanwhile is not lost to next. Throws for a refusal, and when there is no
    /// answer in the command's time.
    rksl::Result ask(rksl::Command const& command);

    /// A connection that is silent for 40 s is given up: servers send a heartbeat every 15 s.
    Next next(rksl::StreamData& frame) override;

    /// The orderly end: our end of file, then the server's. May take some seconds.
    void close() { mStream.close(); }

private:
    static bool keep(unsigned short type, void* session, rksl::IStream& stream);
    void take(rksl::StreamData& frame);
    template <class Action> auto guarded(Action action) -> decltype(action());

    Endpoint const mEndpoint;
    rksl::NetIOStream mStream;
    std::deque<rksl::StreamData> mKept; // came while we waited for an answer
    uint32_t mLastTick = 0;             // ms, of the last object
};

} // namespace tools
