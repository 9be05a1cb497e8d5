#pragma once

#include "Meridane/Subsystem/ClientLog.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_LogInterface.h"
#include "misc/rktl_SmartPtr.h"
#include "misc/rktl_String.h"
#include "streams/rksl_IOStream.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StreamCloser.h"
#include "streams/rksl_StreamListener.h"
#include "streams/rksl_StreamServer.h"
#include "sync/rkst_Event.h"
#include "sync/rkst_SimpleThread.h"
#include "sync/rkst_Vault.h"
#include "video/rkvl_Resolution.h"

#include <cstdint>
#include <list>
#include <utility>
#include <vector>

class CameraParams;
class Frame;
namespace rksl {
class Command;
class Result;
}

/// The server side of the object protocol, without what commands mean: it owns the servers that connections come from and the
/// list of clients, reads from all clients and sends heartbeats on a thread of its own, and gives frames to those who asked.
///
/// A client that fails costs the others nothing: it is dropped, with a line in the log, and its connection is closed in order
/// by somebody who holds no lock. At most 64 clients, counting those whose connection is still being closed.
///
/// Threads: this one; those of the servers (addStream); the frame thread (updateFrameListeners, getRequestedImages), which
/// waits half a second for the list at most and then goes without. The owner calls the rest. What a derived class overrides runs
/// on these threads, so its destructor calls stopStreamServers.
class CameraInterface : public rkst::SimpleThread, public rksl::StreamListener, public LogInterface {
public:
    static constexpr unsigned int maxClients = 64;
    static constexpr unsigned int noHeartbeat = 0xFFFFFFFF;

    /// One client.
    struct Listener {
        rktl::SmartPtr<rksl::IOStream> stream;
        rktl::ElapsedTime nextFrameTime;                                ///< ticks at which a frame is due; 0: at once
        rktl::ElapsedTime framePeriod = rktl::ElapsedTime(int64_t(33)); ///< least time between frames
        uint16_t fps = 30;                                              ///< as asked for
        rksl::Set<rktl::String> imageTypes;                             ///< that go with each frame
        bool sendTracks = false;
        bool framesRequested = false;
        bool parametersRequested = false;
        uint32_t pendingFlags = 0;   ///< of the frames that were skipped
        rkvl::Resolution resolution; ///< wanted; nobody sets it

        bool operator==(Listener const& other) const { return stream == other.stream; }
        bool operator<(Listener const& other) const { return stream < other.stream; }
    };
    using Listeners = std::list<Listener>;

    /// logger: not owned; may be null. readWaitMs: milliseconds between two rounds of reading.
    CameraInterface(rktl::Logger* logger, unsigned int readWaitMs);

    /// Stops the servers and ends all connections, which takes 10 seconds at most.
    ~CameraInterface() noexcept override;

    // ---- Servers ----

    /// Takes the server over. Its index; -1 for null, or when the servers were busy for 15 seconds (it is then deleted).
    int addStreamServer(rksl::StreamServer* server, bool startNow);
    /// Indices of the others stay. False when there is no such server.
    bool deleteStreamServer(int index);
    void clearStreamServers();
    /// All servers, and the thread.
    void startStreamServers();
    void stopStreamServers();

    // ---- Clients ----

    /// Greets a new client with a heartbeat. False when it was not taken.
    bool addStream(rktl::SmartPtr<rksl::IOStream>& stream) override;

    /// Gives frame to each client whose turn it is, with the images and tracks that it asked for. What a frame says of these
    /// (setImageNames, setHasObjects) is changed by that. A frame that finds the list busy is lost.
    virtual void updateFrameListeners(Frame& frame);

    /// Adds the names of the images that clients asked for. size: the largest size asked for, 0x0 for none. False without
    /// clients, and when a list was busy; both are then as before.
    bool getRequestedImages(rksl::Set<rktl::String>& images, rkvl::Resolution& size);

    /// To the clients that want parameters.
    void updateParamsListeners(CameraParams const& params);

    /// Ends all connections in order, at the same time; after 8 seconds those that are left are broken off.
    void clearListeners();

    // ---- What heartbeats tell ----

    /// While the signal is lost, heartbeats come once a second.
    void setVideoLoss(bool lost);
    void setVideoPosition(rktl::ElapsedTime const& position, bool finished);

    using SimpleThread::process;
    void process() override;

protected:
    static constexpr unsigned int listLimit = 15000; // ms

    /// Carries a command out; the caller sends the result. stream: the client's. False: the command is not supported.
    /// Runs with the clients' list held. An exception ends that client.
    virtual bool handleCommand(rksl::Command const& command, rksl::IOStream const* stream, rksl::Result& result) = 0;

    /// For lines that a client caused; to be called with the clients' list held.
    void logClient(rktl::LogType type, rktl::String const& text) { mClientLog.line(type, text); }

    rkst::Vault<Listeners> mListeners;
    rkst::Vault<rksl::Set<rktl::String>> mRequestedImages; // union over the clients that get frames

private:
    template <class Action> bool guarded(char const* doing, char const* unknown, Action action);
    Listeners::iterator drop(Listeners& listeners, Listeners::iterator listener);
    void readListeners();
    bool readFromStream(rksl::IOStream& stream);
    bool readObject(rksl::IOStream& stream);
    void answerCommand(rksl::IOStream& stream);
    void answerPing(rksl::IOStream& stream);
    void keepHeartbeats();
    void sendHeartbeats();

    rkst::Vault<std::vector<rktl::SmartPtr<rksl::StreamServer>>> mStreamServers;
    uint32_t mHeartbeatPeriod = 0; // ms
    uint32_t mHeartbeatMark;       // ticks at which the period began
    rkst::Event mVideoLoss{true, false};
    rkst::Vault<std::pair<rktl::ElapsedTime, bool>> mVideoPosition; // in a recording, and whether that is finished
    unsigned int mReadWait;                                         // ms
    rksl::StreamCloser mCloser;
    ClientLog mClientLog;
};
