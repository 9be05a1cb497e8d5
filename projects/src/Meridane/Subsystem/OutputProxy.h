#pragma once

#include "Meridane/Subsystem/CameraInterface.h"

class CameraCmd;
class ConnectionCmd;
class TrackerCmd;

/// The camera's own server: it listens on one TCP port and answers the few commands that make sense on a camera. The pipeline
/// asks it which images clients want, and pushes each finished frame through it.
class OutputProxy : public CameraInterface {
public:
    /// port: of its low 16 bits; 0 makes no server and no thread. logger: not owned; may be null.
    OutputProxy(unsigned int port, rktl::Logger* logger);
    ~OutputProxy() noexcept override;

    /// May be called while clients are served.
    void setLogger(rktl::Logger* logger) override;

protected:
    bool handleCommand(rksl::Command const& command, rksl::IOStream const* stream, rksl::Result& result) override;

    virtual void handleConnectionCmd(ConnectionCmd const& command, rksl::IOStream const* stream, rksl::Result& result);
    virtual void handleCameraCmd(CameraCmd const& command, rksl::IOStream const* stream, rksl::Result& result);
    virtual void handleTrackerCmd(TrackerCmd const& command, rksl::Result& result);

private:
    bool dispatch(rksl::Command const& command, rksl::IOStream const* stream, rksl::Result& result);
    void requestFrames(ConnectionCmd const& command, rksl::IOStream const* stream, rksl::Result& result);
};
