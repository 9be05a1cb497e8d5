#include "application/Coordinator.h"

#include "BaseClasses/MovingObjectParams.h"
#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "misc/rk_clock.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Logger.h"
#include "misc/rktl_TimeStamp.h"
#include "misc/rktl_url.h"
#include "streams/rksl_Set.h"
#include "video/rkvl_Resolution.h"

using rktl::LogType;

namespace {

constexpr unsigned int failuresMax = 50;  // in a row
constexpr unsigned int retryPause = 1000; // ms

rktl::String sizeText(rkvl::Resolution const& resolution)
{
    return rktl::String::fromFormat("%dx%d", resolution.width.value, resolution.height.value);
}

rktl::String inHome(char const* path)
{
    return rktl::String::fromEnvVarible("CS_APP_HOME") + path;
}

} // namespace

rkst::Event& Coordinator::mStopEvent = *new rkst::Event(true, false);
rkst::Event& Coordinator::mConfigEvent = *new rkst::Event(true, false);
rkst::Event& Coordinator::mDayMode = *new rkst::Event(true, true);

Coordinator::Coordinator(unsigned int port, rktl::Logger& logger, rktl::String const& payload)
    : LogInterface(&logger)
    , mTracker(&logger, port, true)
    , mEventPayload(payload)
{
}

void Coordinator::setEventGracePeriod(rktl::ElapsedTime const& period)
{
    mAlarmGate.setGracePeriod(period);
}

// ---- Signals and callbacks ----

void Coordinator::signalHandler(int signal, siginfo_t*, void*)
{
    if (signal == SIGUSR1)
        mConfigEvent.signal();
    mStopEvent.signal();
}

void Coordinator::onDayNight(csdk_daynight mode)
{
    if (mode == CSDK_DAY)
        mDayMode.signal();
    else if (mode == CSDK_NIGHT)
        mDayMode.reset();
}

void Coordinator::onIRCut(bool) { }

void Coordinator::onIRLed(bool) { }

rktl::String Coordinator::getDayNightMode(csdk_daynight mode)
{
    return mode == CSDK_DAY ? "day" : mode == CSDK_NIGHT ? "night" : "unknown";
}

// ---- Start ----

bool Coordinator::initialize(rkvl::Resolution const& resolution)
{
    if (mInitialized)
        return true;
    mDayMode.signal();
    mStopEvent.reset();
    mConfigEvent.reset();
    installSignalHandlers();
    if (!loadLibrary() || !selectResolution(resolution))
        return false;
    if (mStopEvent.wait(0)) {
        log(LogType::Error, "Stopping...");
        return false;
    }
    readImageState();
    mInitialized = true;
    return true;
}

void Coordinator::installSignalHandlers()
{
    mSigAction = {};
    mSigAction.sa_sigaction = signalHandler; // of its arguments it reads the first only: the flags ask for no others
    for (int const signal : {SIGTERM, SIGINT, SIGUSR1})
        sigaction(signal, &mSigAction, nullptr);
}

bool Coordinator::loadLibrary()
{
    csdk_settings.on_daynight = onDayNight;
    csdk_settings.on_ircut = onIRCut;
    csdk_settings.on_irled = onIRLed;
    csdk_settings.callbacks_enabled = 1;
    int const error = csdk_init();
    if (error == 0)
        return true;
    log(LogType::Error, "Error initializing video SDK error code = %d: %s", error, csdk_strerr(error));
    mLogger->stop(rktl::ElapsedTime(loggerStopLimit));
    return false;
}

bool Coordinator::selectResolution(rkvl::Resolution const& wanted)
{
    rksl::Set<rkvl::Resolution> offered;
    int32_t width = 0;
    int32_t height = 0;
    while (csdk_next_resolution(csdk.video, &width, &height) == 0)
        offered.insert(rkvl::Resolution(width, height));
    if (offered.empty()) {
        log(LogType::Error, "Unable to find any resolutions");
        return false;
    }
    bool const isOffered = wanted.width > 0 && wanted.height > 0 && offered.count(wanted) > 0;
    rkvl::Resolution const chosen = isOffered ? wanted : *offered.begin();
    if (!isOffered)
        log(LogType::Info, "No resolution specified, using %s", sizeText(chosen).c_str());
    if (csdk_set_resolution(csdk.video, chosen.width, chosen.height) < 0) {
        log(LogType::Error, "Unable to set resolution to %s", sizeText(chosen).c_str());
        return false;
    }
    log(LogType::Info, "Set resolution to %s", sizeText(chosen).c_str());
    return true;
}

void Coordinator::readImageState()
{
    csdk_daynight const mode = csdk_get_daynight_mode(csdk.image);
    onDayNight(mode);
    log(LogType::Info, "Current Day/Night mode is %s", getDayNightMode(mode).c_str());

    bool const hasCut = csdk_is_ircut_supported(csdk.image) != 0;
    log(LogType::Info, "IR cut is %s", hasCut ? "supported" : "not supported");
    if (hasCut)
        log(LogType::Info, "IR cut is %s", csdk_is_ircut_on(csdk.image) ? "on" : "off");

    bool const hasLed = csdk_is_irled_supported(csdk.image) != 0;
    log(LogType::Info, "IR Led is %s", hasLed ? "supported" : "not supported");
    if (hasLed) {
        log(LogType::Info, "IR Led is %s\n", csdk_is_irled_enabled(csdk.image) ? "enabled" : "disabled");
        log(LogType::Info, "IR Led is %s\n", csdk_is_irled_on(csdk.image) ? "on" : "off");
    }
}

// ---- The frame loop ----

Coordinator::Result Coordinator::process(SimpleTracker::Params const& params)
{
    if (!mInitialized) {
        log(LogType::Error, "Not initialized");
        return failedToStart;
    }
    log(LogType::Info, "Using denormalized sensitivity:  %f",
        double(MovingObjectParams::getBackgroundThreshold(params.sensitivity)));
    CameraFrame camera;
    uint32_t const streamStart = rk_tickcount();
    ProcessFrame frame;
    csdk_vframe* handle = csdk_get_vframe(csdk.video);
    unsigned int failures = 0;
    bool isConfigured = false;
    while (!mStopEvent.wait(0) && handle) {
        if (csdk_refresh_vframe(handle) != 0) {
            handle = recover(handle, failures);
            continue;
        }
        isConfigured = isConfigured || configure(params);
        if (!isConfigured) {
            csdk_free_vframe(handle);
            return failedToStart;
        }
        processFrame(handle, camera, streamStart, frame);
        failures = 0;
    }
    return finish(handle);
}

/// A new frame handle in place of one that failed. The pauses end early when a stop is requested.
csdk_vframe* Coordinator::recover(csdk_vframe* handle, unsigned int& failures)
{
    log(LogType::Error, "csdk_refresh_vframe failed.");
    csdk_free_vframe(handle);
    mStopEvent.wait(retryPause);
    handle = csdk_get_vframe(csdk.video);
    if (++failures >= failuresMax) {
        log(LogType::Error, "Stopping application ...");
        mStopEvent.signal();
    } else {
        mStopEvent.wait(retryPause);
    }
    return handle;
}

bool Coordinator::configure(SimpleTracker::Params const& params)
{
    if (mTracker.setParameters(params))
        return true;
    log(LogType::Error, "Unable to set parameters:  %s\n", mTracker.getLastError().c_str());
    return false;
}

void Coordinator::processFrame(csdk_vframe const* handle, CameraFrame& camera, uint32_t streamStart, ProcessFrame& frame)
{
    frame.clear();
    bool const colour =
        camera.wrap(csdk_vframe_ptr(handle), csdk_vframe_width(handle), csdk_vframe_height(handle), mDayMode.wait(0), frame);
    CameraFrame::stamp(frame, streamStart);
    rksl::List<Event> events;
    if (!mTracker.process(frame, colour, events)) {
        log(LogType::Error, mTracker.getLastError());
        return;
    }
    for (Event const& event : events)
        onEvent(event);
}

Coordinator::Result Coordinator::finish(csdk_vframe* handle)
{
    if (handle) {
        log(LogType::Info, "Freeing vframe ...");
        csdk_free_vframe(handle);
    }
    log(LogType::Info, "Unloading SDK ...");
    csdk_deinit();
    log(LogType::Info, "SDK Unloaded");
    mInitialized = false;
    bool const isReload = mConfigEvent.wait(0);
    if (isReload)
        log(LogType::Status, "Configuration change detected ...");
    mLogger->stop(rktl::ElapsedTime(loggerStopLimit));
    if (isReload)
        return configurationChanged;
    log(LogType::Info, "Exiting ...");
    return stopped;
}

// ---- Events ----

void Coordinator::onEvent(Event const& event)
{
    if (mAlarmGate.mayPass(event.getUID()) && send(event))
        mAlarmGate.sent(event.getUID());
}

bool Coordinator::send(Event const& event)
{
    int const error = csdk_event_send(mEventPayload.c_str(), 0, mEventPayload.size());
    if (error != 0) {
        log(LogType::Error, "Error sending APP event: %d", error);
        return false;
    }
    rksl::Set<rktl::Integer> ids;
    event.getObjectIDs(rktl::url(event.getOrigin()), ids);
    ++mEventCount;
    log(LogType::Info, "Sending Event %u (Confidence %d) for Object ID(s) %s", mEventCount, event.getConfidence(),
        rktl::String::join(ids, ",").c_str());
    rktl::String const path = inHome("/html/event_time.json");
    rktl::String const text = rktl::String::fromFormat(
        "{\"event_time\":\"%s\",\"event_id\":%u}\n", event.getStart().first.toString("ISO8601").c_str(), mEventCount);
    if (!text.toFile(path.c_str()))
        log(LogType::Warning, "Unable to write %s", path.c_str());
    return true;
}
