#pragma once

#include "streams/rksl_StreamServer.h"
#include "sync/rkst_WorkerThread.h"

#include <cstdint>

namespace rksl {

/// Listens on a TCP port of all interfaces (IPv4) and hands each connection to the listener as a rksl::NetIOStream whose
/// send queue holds 50 frames. At most one connection is accepted per tick. A port that cannot be had is tried again on each
/// tick, and counts as listening meanwhile.
class NetStreamServer : public StreamServer, public rkst::WorkerThread {
public:
    /// The two values in the middle are kept for those who make a server, and have no effect. tickMs: milliseconds between ticks.
    NetStreamServer(unsigned short port, unsigned int, unsigned int, unsigned int tickMs);
    ~NetStreamServer() noexcept override;

    bool listen() override;
    /// Takes at most 15 seconds.
    bool stopListening() override;
    /// Whether the thread runs.
    bool isListening() const override;

protected:
    void onInitialize() override;
    void onDeinitialize() override;
    void onTimeOut() override;

private:
    void handOver(int connection);

    uint16_t mPort;
    int mSocket = -1; // of the thread
};

} // namespace rksl
