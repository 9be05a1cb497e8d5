#include "Meridane/Subsystem/CameraInterface.h"

#include "BaseClasses/CameraParams.h"
#include "BaseClasses/Frame.h"
#include "BaseClasses/Heartbeat.h"
#include "misc/rk_clock.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_Command.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_Ping.h"
#include "streams/rksl_Result.h"

#include <exception>

namespace {

constexpr unsigned int frameLimit = 500;      // ms that the frame thread waits for the list
constexpr unsigned int closeLimit = 8000;     // ms, a little more than a peer has for its end of file
constexpr int stopLimit = 15000;              // ms
constexpr uint32_t heartbeatPeriod = 15000;   // ms
constexpr uint32_t videoLossHeartbeat = 1000; // ms

/// Milliseconds until a frame is due, across the wrap of the ticks. More than a period is a due time of long ago.
int32_t timeToNextFrame(CameraInterface::Listener const& listener, rktl::ElapsedTime const& now)
{
    return static_cast<int32_t>(static_cast<uint32_t>((listener.nextFrameTime - now).toMilliseconds()));
}

bool isDue(CameraInterface::Listener const& listener, rktl::ElapsedTime const& now)
{
    int32_t const time = timeToNextFrame(listener, now);
    return listener.nextFrameTime == rktl::ElapsedTime() || time <= 0 || time > listener.framePeriod.toMilliseconds();
}

/// Of a listener that is due. Keeps to the rate; whoever fell behind starts anew instead of getting a burst.
void advanceSchedule(CameraInterface::Listener& listener, rktl::ElapsedTime const& now)
{
    rktl::ElapsedTime const none;
    int32_t const time = timeToNextFrame(listener, now);
    bool const keepsUp = time <= 0 && -time <= listener.framePeriod.toMilliseconds();
    bool const starts = now == none || listener.nextFrameTime == none;
    listener.nextFrameTime = (keepsUp && !starts ? listener.nextFrameTime : now) + listener.framePeriod;
}

void writeFrame(Frame& frame, uint32_t flags, CameraInterface::Listener& listener)
{
    frame.setImageNames(listener.imageTypes);
    frame.setFlags(flags | (listener.pendingFlags & Frame::carriedFlags));
    frame.setHasObjects(listener.sendTracks);
    listener.pendingFlags = 0;
    listener.stream->write(frame);
}

} // namespace

CameraInterface::CameraInterface(rktl::Logger* logger, unsigned int readWaitMs)
    : LogInterface(logger)
    , mHeartbeatMark(rk_tickcount())
    , mReadWait(readWaitMs)
    , mClientLog(*this)
{
}

CameraInterface::~CameraInterface() noexcept
{
    stopStreamServers();
    clearStreamServers();
    clearListeners();
}

// ---- Servers ----

int CameraInterface::addStreamServer(rksl::StreamServer* server, bool startNow)
{
    if (!server)
        return -1;
    rktl::SmartPtr<rksl::StreamServer> const owned(server);
    auto const servers = mStreamServers.getWritePtr(listLimit);
    if (!servers)
        return -1;
    server->setStreamListener(this);
    if (startNow)
        server->listen();
    servers->push_back(owned);
    return static_cast<int>(servers->size()) - 1;
}

bool CameraInterface::deleteStreamServer(int index)
{
    auto const servers = mStreamServers.getWritePtr(listLimit);
    if (!servers || index < 0 || size_t(index) >= servers->size() || !(*servers)[size_t(index)])
        return false;
    (*servers)[size_t(index)]->stopListening();
    (*servers)[size_t(index)].removeReference();
    return true;
}

void CameraInterface::clearStreamServers()
{
    if (auto const servers = mStreamServers.getWritePtr(listLimit))
        servers->clear();
}

void CameraInterface::startStreamServers()
{
    if (auto const servers = mStreamServers.getReadPtr(listLimit))
        for (auto const& server : *servers)
            if (server)
                server->listen();
    start();
}

void CameraInterface::stopStreamServers()
{
    if (auto const servers = mStreamServers.getReadPtr(listLimit))
        for (auto const& server : *servers)
            if (server)
                server->stopListening();
    stop(rktl::ElapsedTime(int64_t(stopLimit)));
}

// ---- The thread ----

void CameraInterface::process()
{
    while (!mStopEvent.wait(mReadWait)) {
        readListeners();
        keepHeartbeats();
    }
}

/// Runs action. An exception is logged, and false the answer. doing: null where the log is to say no more than unknown.
template <class Action> bool CameraInterface::guarded(char const* doing, char const* unknown, Action action)
{
    try {
        action();
        return true;
    } catch (std::exception const& failure) {
        logClient(rktl::LogType::Error, doing ? rktl::String(doing) + ": " + failure.what() : rktl::String(unknown));
    } catch (...) {
        if (!std::current_exception())
            throw; // no exception of ours: the thread is being cancelled
        logClient(rktl::LogType::Error, unknown);
    }
    return false;
}

CameraInterface::Listeners::iterator CameraInterface::drop(Listeners& listeners, Listeners::iterator listener)
{
    mCloser.close(listener->stream);
    return listeners.erase(listener);
}

/// One object from each client that has one.
void CameraInterface::readListeners()
{
    auto const listeners = mListeners.getWritePtr(listLimit);
    if (!listeners)
        return;
    rksl::Set<rktl::String> images;
    for (auto listener = listeners->begin(); listener != listeners->end();) {
        bool keep = false;
        guarded(
            "Reading from client", "Unknown error while reading from client", [&] { keep = readFromStream(*listener->stream); });
        if (keep && listener->framesRequested)
            images.insert(listener->imageTypes.begin(), listener->imageTypes.end());
        listener = keep ? std::next(listener) : drop(*listeners, listener);
    }
    mRequestedImages.assign(images, listLimit);
}

/// False when the client is to be dropped.
bool CameraInterface::readFromStream(rksl::IOStream& stream)
{
    bool keep = false;
    guarded("Reading from stream", "Unknown error while reading from stream", [&] { keep = readObject(stream); });
    return keep;
}

bool CameraInterface::readObject(rksl::IOStream& stream)
{
    if (stream.isEOF())
        return false;
    if (stream.isEmpty())
        return true;
    switch (stream.getNextType()) {
    case rksl::Command::typeId:
        answerCommand(stream);
        return true;
    case rksl::Ping::typeId:
        answerPing(stream);
        return true;
    case rksl::EndOfFile::typeId:
        return false;
    default:
        stream.skip();
        return true;
    }
}

void CameraInterface::answerCommand(rksl::IOStream& stream)
{
    rksl::Command command;
    stream.read(command);
    rksl::Result result;
    if (!handleCommand(command, &stream, result)) {
        result.setCode(rksl::Result::unsupported);
        result.setMessage("Unsupported command.");
    }
    result.setCommand(command);
    stream.write(result);
}

void CameraInterface::answerPing(rksl::IOStream& stream)
{
    rksl::Ping ping;
    stream.read(ping);
    stream.write(Heartbeat(rktl::TimeStamp::systemTime()));
}

void CameraInterface::keepHeartbeats()
{
    if (mHeartbeatPeriod == noHeartbeat || rk_tickcount() - mHeartbeatMark < mHeartbeatPeriod)
        return;
    sendHeartbeats();
    mHeartbeatPeriod = mVideoLoss.wait(0) ? videoLossHeartbeat : heartbeatPeriod;
    mHeartbeatMark = rk_tickcount();
}

void CameraInterface::sendHeartbeats()
{
    auto const word = [](bool value) { return value ? "true" : "false"; };
    Heartbeat heartbeat(rktl::TimeStamp::systemTime());
    heartbeat.setAttribute("video-loss", word(mVideoLoss.wait(0)));
    std::pair<rktl::ElapsedTime, bool> position;
    if (mVideoPosition.copy(position, 0)) {
        heartbeat.setAttribute("video-position", position.first.toHumanString(false));
        heartbeat.setAttribute("video-finished", word(position.second));
    }
    auto const listeners = mListeners.getWritePtr(listLimit);
    if (!listeners)
        return;
    for (auto listener = listeners->begin(); listener != listeners->end();) {
        bool const sent = guarded(nullptr, "Unknown error while sending heartbeats to client", [&] {
            listener->stream->write(heartbeat);
            listener->stream->flush();
        });
        listener = sent ? std::next(listener) : drop(*listeners, listener);
    }
}

// ---- Clients ----

bool CameraInterface::addStream(rktl::SmartPtr<rksl::IOStream>& stream)
{
    if (!stream)
        return false;
    auto const listeners = mListeners.getWritePtr(listLimit);
    if (!listeners)
        return false;
    if (listeners->size() + mCloser.getCount() >= maxClients) {
        logClient(rktl::LogType::Warning, rktl::String::fromFormat("A client was refused: %u are connected.", maxClients));
        stream->abort();
        return false;
    }
    bool const greeted = guarded("Greeting client", "Unknown error while greeting client", [&] {
        stream->write(Heartbeat(rktl::TimeStamp::systemTime()));
        stream->flush();
    });
    if (!greeted)
        return false;
    Listener client;
    client.stream = stream;
    listeners->push_back(client);
    listeners->sort();
    listeners->unique();
    return true;
}

void CameraInterface::updateFrameListeners(Frame& frame)
{
    auto const listeners = mListeners.getWritePtr(frameLimit);
    if (!listeners || listeners->empty())
        return;
    rktl::ElapsedTime const now(static_cast<int64_t>(rk_tickcount()));
    uint32_t const flags = frame.getFlags();
    for (auto listener = listeners->begin(); listener != listeners->end();) {
        bool sent = true;
        if (listener->framesRequested && !isDue(*listener, now)) {
            listener->pendingFlags |= flags;
        } else if (listener->framesRequested) {
            sent = guarded("Sending frame to client", "Unknown error while sending frame to client",
                [&] { writeFrame(frame, flags, *listener); });
            advanceSchedule(*listener, now);
        }
        listener = sent ? std::next(listener) : drop(*listeners, listener);
    }
    frame.setFlags(flags);
}

bool CameraInterface::getRequestedImages(rksl::Set<rktl::String>& images, rkvl::Resolution& size)
{
    auto const listeners = mListeners.getWritePtr(frameLimit);
    if (!listeners || listeners->empty())
        return false;
    rksl::Set<rktl::String> requested;
    if (!mRequestedImages.copy(requested, listLimit))
        return false;
    size = rkvl::Resolution(-1, -1);
    for (Listener const& listener : *listeners)
        if (listener.framesRequested)
            size = size.getMax(listener.resolution);
    images.insert(requested.begin(), requested.end());
    return true;
}

void CameraInterface::updateParamsListeners(CameraParams const& params)
{
    auto const listeners = mListeners.getWritePtr(listLimit);
    if (!listeners)
        return;
    for (auto listener = listeners->begin(); listener != listeners->end();) {
        bool const sent = !listener->parametersRequested ||
            guarded("Sending parameters to client", "Unknown error while sending parameters to client",
                [&] { listener->stream->write(params); });
        listener = sent ? std::next(listener) : drop(*listeners, listener);
    }
}

void CameraInterface::clearListeners()
{
    if (auto const listeners = mListeners.getWritePtr(listLimit)) {
        while (!listeners->empty())
            drop(*listeners, listeners->begin());
    }
    mCloser.finish(closeLimit);
}

void CameraInterface::setVideoLoss(bool lost)
{
    if (lost)
        mVideoLoss.signal();
    else
        mVideoLoss.reset();
}

void CameraInterface::setVideoPosition(rktl::ElapsedTime const& position, bool finished)
{
    mVideoPosition.assign({position, finished}, listLimit);
}
