#pragma once

#include "application/AlarmGate.h"
#include "application/Settings.h"
#include "application/SimpleTracker.h"
#include "camera/csdk.h"
#include "math/rkml_Line2d.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_LogInterface.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "sync/rkst_Event.h"
#include "trackers/EventSpies/EventSpy.h"

#include <csignal>
#include <cstdint>

class CameraFrame;
class ProcessFrame;

namespace rktl {
class ElapsedTime;
class Logger;
}
namespace rkvl {
class Resolution;
}

/// The bridge between camera and analysis, and the only place that calls the camera's library: takes each frame to the tracker,
/// and each alarm to the camera's event service and to the time file of its pages ("/html/event_time.json" in the home that
/// CS_APP_HOME names). One is built for each pass: settings are never changed under way.
///
/// All belongs to the main thread, but the handler of signals and the callbacks of the camera, which set or reset events and do
/// nothing else. SIGTERM and SIGINT stop the frame loop, SIGUSR1 stops it for new settings.
class Coordinator : public EventSpy::Listener, private LogInterface {
public:
    static constexpr int64_t loggerStopLimit = 1500; // ms

    /// How process ended.
    enum Result : int { stopped = 0, configurationChanged = 1, failedToStart = 2 };

    /// Fills settings from "html/settings_xml.txt" in the application's home, or from "html/default_settings_xml.txt" when that
    /// cannot be read or is empty. False, with the reason in the log, when neither can, or when the text is not of the format.
    static bool loadXML(rktl::Logger& logger, SettingsMap& settings);

    /// port: of the server; 0 for none. logger: not owned. payload: the text that goes with every camera event.
    Coordinator(unsigned int port, rktl::Logger& logger, rktl::String const& payload);

    /// Installs the handlers of signals, loads the camera's library, which reads csdk_settings, and selects the resolution: the
    /// wanted one, or the smallest if that is not offered or not above 0. False, with the reason in the log, when the camera
    /// refuses or a stop is requested meanwhile; the library may then stay loaded. True at once when it has been done already.
    bool initialize(rkvl::Resolution const& resolution);

    /// The time that at least lies between two sent events; only the low 32 bits of its milliseconds are kept. The next event
    /// is not held back.
    void setEventGracePeriod(rktl::ElapsedTime const& period);

    /// The frame loop, until a signal stops it, the video ends or the camera fails 50 times in a row; unloads the library and
    /// stops the logger. failedToStart: not initialized, or the tracker refused params; the library then stays loaded and the
    /// logger runs on.
    Result process(SimpleTracker::Params const& params);

    /// Sends the event, unless it is in its quiet time or the grace period holds it back.
    void onEvent(Event const& event) override;

    static void signalHandler(int signal, siginfo_t* info, void* context);

    // Callbacks of the camera, on a thread of its own.
    static void onDayNight(csdk_daynight mode);
    static void onIRCut(bool on);
    static void onIRLed(bool on);

    /// "day", "night" or "unknown".
    static rktl::String getDayNightMode(csdk_daynight mode);

    /// Two points, as settings hold them: "<first><x>1</x><y>2</y></first><second>...</second>". False, and line as before, for
    /// any other text.
    static bool parseLine(rktl::String const& text, rkml::LineSegment2D<float>& line);

    /// Any number of "<polygon>" elements with "<point><x>1</x><y>2</y></point>" elements. False at the first element that is
    /// not of this form; the polygons before it have been added to zones.
    static bool parseZones(rktl::String const& text, rksl::List<rkml::Polygon2D<float>>& zones);

private:
    // The steps of initialize.
    void installSignalHandlers();
    bool loadLibrary();
    bool selectResolution(rkvl::Resolution const& wanted);
    void readImageState();

    // The steps of the frame loop.
    csdk_vframe* recover(csdk_vframe* handle, unsigned int& failures);
    bool configure(SimpleTracker::Params const& params);
    void processFrame(csdk_vframe const* handle, CameraFrame& camera, uint32_t streamStart, ProcessFrame& frame);
    Result finish(csdk_vframe* handle);

    bool send(Event const& event);

    // Never destroyed: signals and the camera's threads may come until the very end of the process.
    static rkst::Event& mStopEvent;
    static rkst::Event& mConfigEvent;
    static rkst::Event& mDayMode;

    SimpleTracker mTracker;
    struct sigaction mSigAction = {};
    bool mInitialized = false;
    rktl::String mEventPayload;
    uint32_t mEventCount = 0; // sent events
    AlarmGate mAlarmGate;
};
