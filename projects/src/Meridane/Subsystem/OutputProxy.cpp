#include "Meridane/Subsystem/OutputProxy.h"

#include "BaseClasses/CameraMap.h"
#include "Meridane/Subsystem/CameraCmd.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "Meridane/Subsystem/TrackerCmd.h"
#include "misc/rktl_Machine.h"
#include "misc/rktl_url.h"
#include "streams/rksl_NetStreamServer.h"
#include "streams/rksl_Result.h"

#include <algorithm>

using rksl::Result;

namespace {

constexpr unsigned int readWait = 100;   // ms
constexpr unsigned int acceptTick = 100; // ms
constexpr char const* cameraName = "Embedded";
constexpr unsigned int cameraStatus = CameraMap::online | CameraMap::enabled;
static_assert(cameraStatus == 18, "clients know the camera by this status");

/// Bytes of a request for frames: the names in it go out again with each frame, and reading them holds up all clients.
constexpr unsigned int requestMax = 4096;

constexpr char const* debugImages[] = {"Activity Image", "Background Image", "Exclusion Mask", "Foreground Image", "Native Image",
    "Peripheral Image", "Processed Image"};

/// The record as a command of its family, whatever its url.
template <class Cmd> Cmd typed(rksl::Command const& command)
{
    rktl::url anywhere;
    anywhere.mScheme = "meridane";
    anywhere.mHost = "localsite";
    Cmd result(Cmd::family, 0u, anywhere);
    result.MeridaneCmd::operator=(command);
    return result;
}

rktl::ElapsedTime periodOf(uint16_t fps)
{
    return rktl::ElapsedTime(int64_t(fps > 0 ? 1000 / fps : 1));
}

} // namespace

OutputProxy::OutputProxy(unsigned int port, rktl::Logger* logger)
    : CameraInterface(logger, readWait)
{
    if (port == 0)
        return;
    log(rktl::LogType::Info, "Listening on port %d", static_cast<int>(port));
    addStreamServer(new rksl::NetStreamServer(static_cast<uint16_t>(port), 0xFFFFFFFF, 50, acceptTick), false);
    startStreamServers();
}

OutputProxy::~OutputProxy() noexcept
{
    stopStreamServers();
}

void OutputProxy::setLogger(rktl::Logger* logger)
{
    auto const listeners = mListeners.getWritePtr(listLimit); // who logs holds it
    CameraInterface::setLogger(logger);
}

bool OutputProxy::handleCommand(rksl::Command const& command, rksl::IOStream const* stream, Result& result)
{
    if (!dispatch(command, stream, result)) {
        result.setCode(Result::unsupported);
        result.setMessage("Embedded SDK cannot handle this command.");
        return false;
    }
    if (result.getCode() < 0 || result.getCode() == Result::warning)
        logClient(rktl::LogType::Info, result.getMessage());
    return true;
}

bool OutputProxy::dispatch(rksl::Command const& command, rksl::IOStream const* stream, Result& result)
{
    switch (static_cast<uint16_t>(command.getCommandType())) {
    case ConnectionCmd::family:
        handleConnectionCmd(typed<ConnectionCmd>(command), stream, result);
        return true;
    case CameraCmd::family:
        handleCameraCmd(typed<CameraCmd>(command), stream, result);
        return true;
    case TrackerCmd::family:
        handleTrackerCmd(typed<TrackerCmd>(command), result);
        return true;
    default:
        return false;
    }
}

void OutputProxy::handleConnectionCmd(ConnectionCmd const& command, rksl::IOStream const* stream, Result& result)
{
    switch (command.getCommandSubType()) {
    case ConnectionCmd::connectCamera:
        result.setCode(Result::success); // the connection is there already
        break;
    case ConnectionCmd::requestFrames:
        requestFrames(command, stream, result);
        break;
    default:
        result.setCode(Result::unsupported);
        result.setMessage("Unsupported ConnectionCmd sub-type");
    }
}

void OutputProxy::requestFrames(ConnectionCmd const& command, rksl::IOStream const* stream, Result& result)
{
    logClient(rktl::LogType::Info, "Requesting frames ... ");
    auto const refuse = [&](Result::Code code, char const* message) {
        result.setCode(code);
        result.setMessage(message);
    };
    if (command.getObjectStream()->size() > requestMax)
        return refuse(Result::failure, "Too many images requested.");
    FrameRequest const request = command.getFrameRequest();
    auto const listeners = mListeners.getWritePtr(listLimit);
    if (!listeners || !stream)
        return refuse(Result::timeout, "Unable to obtain lock on listeners.");
    auto const listener = std::find_if(
        listeners->begin(), listeners->end(), [stream](Listener const& candidate) { return candidate.stream.get() == stream; });
    if (listener == listeners->end())
        return refuse(Result::failure, "Unable to find listener.");
    listener->framesRequested = true;
    listener->sendTracks = request.tracks != 0;
    listener->imageTypes = request.imageTypes;
    listener->fps = static_cast<uint16_t>(request.fps.value);
    listener->framePeriod = periodOf(listener->fps);
    listener->nextFrameTime = rktl::ElapsedTime();
    if (auto const images = mRequestedImages.getWritePtr(listLimit)) // the next frame may carry them already
        images->insert(request.imageTypes.begin(), request.imageTypes.end());
    result.setCode(Result::success);
}

void OutputProxy::handleCameraCmd(CameraCmd const& command, rksl::IOStream const*, Result& result)
{
    result.setCode(Result::failure);
    if (command.getCommandSubType() != CameraCmd::queryCameras)
        return;
    rktl::String const machine = rktl::getMachineName();
    CameraMap cameras;
    cameras.addMachine(machine.c_str(), cameraStatus);
    cameras.addCamera(machine.c_str(), cameraName, cameraStatus);
    if (result.setObject(cameras))
        result.setCode(Result::success);
}

void OutputProxy::handleTrackerCmd(TrackerCmd const& command, Result& result)
{
    result.setCode(Result::failure);
    if (command.getCommandSubType() != TrackerCmd::queryDebugImages)
        return;
    rksl::Set<rktl::String> names;
    for (char const* name : debugImages)
        names.insert(name);
    if (result.setObject(names))
        result.setCode(Result::success);
}
