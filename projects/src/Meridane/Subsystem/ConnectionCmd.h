#pragma once

#include "Meridane/Subsystem/FrameRequest.h"
#include "Meridane/Subsystem/MeridaneCmd.h"

/// Commands about the connection itself. Family 3004.
class ConnectionCmd : public MeridaneCmd {
public:
    static constexpr unsigned int family = 3004;

    enum SubType : unsigned int { connectCamera, disconnectCamera, requestFrames, subTypeCount };

    static char const* const ConnectionCmdStrings[subTypeCount];

    using MeridaneCmd::MeridaneCmd;

    // What a client sends. Each throws for a url that names no such thing.

    /// To a camera, or with the scheme "dvc" to a video source.
    static ConnectionCmd connect(rktl::url const& url);
    static ConnectionCmd disconnect(rktl::url const& url);
    static ConnectionCmd frameRequest(rktl::url const& url, FrameRequest const& request);

    /// Throws on any other sub type, and when the command carries no request.
    FrameRequest getFrameRequest() const;

    rktl::String getCommandName() const override;
    rktl::String getCommandSubName(unsigned int subType) const override;
};
