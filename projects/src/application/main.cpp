#include "application/CommandLineArgs.h"
#include "application/Coordinator.h"
#include "application/Settings.h"
#include "application/SpiesFile.h"
#include "camera/csdk.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_FileLogger.h"
#include "trackers/EventSpies/Direction.h"
#include "video/rkvl_Resolution.h"

#include <cstdio>
#include <cstdlib>

using rktl::LogType;

namespace {

constexpr char logPath[] = "/var/log/Contraflow.log";
constexpr int32_t logSizeLimit = 1048576; // bytes

constexpr char eventPayload[] = "      <CameraAppEventPayload>\n"
                                "      <vendorName>Brelvane</vendorName>\n"
                                "      <eventName>Contraflow</eventName>\n"
                                "      <eventState>1</eventState>\n"
                                "      <severity>info</severity>\n"
                                "      <description>Brelvane Contraflow App</description>\n"
                                "      </CameraAppEventPayload>      ";

/// How a pass through settings and frames ended.
enum class Pass { ended, reload, failed };

/// What the camera's library wants to know of the application before it is loaded.
void describeApplication()
{
    csdk_settings.application_name = "Contraflow";
    csdk_settings.vendor_name = "Brelvane";
    csdk_settings.interface_version = 2;
    csdk_settings.log_enabled = 1;
    csdk_settings.services |= CSDK_SERVICE_VIDEO | CSDK_SERVICE_EVENTS;
    csdk_settings.services &= static_cast<uint8_t>(~(CSDK_SERVICE_AUDIO | CSDK_SERVICE_SERIAL | CSDK_SERVICE_PTZ));
    csdk_settings.log_path = logPath;
    csdk_settings.error_log_path = logPath;
}

Pass fail(rktl::Logger& logger, char const* reason)
{
    logger.log(LogType::Error, "%s", reason);
    logger.stop(rktl::ElapsedTime(Coordinator::loggerStopLimit));
    return Pass::failed;
}

void logSettings(
    rktl::Logger& logger, Direction const& spy, rktl::ElapsedTime const& alarmInterval, SimpleTracker::Params const& params)
{
    rktl::String const interval = alarmInterval.toHumanString(false);
    logger.log(LogType::Info, "Alarm Trajectory         : %d", static_cast<int>(spy.getAngle()));
    logger.log(LogType::Info, "Trajectory Tolerance     : %d", static_cast<int>(spy.getTolerance()));
    logger.log(LogType::Info, "Max Width                : %f", double(spy.getMaxWidth()));
    logger.log(LogType::Info, "Max Height               : %f", double(spy.getMaxHeight()));
    logger.log(LogType::Info, "Alarm Grace Period       : %s", interval.c_str());
    logger.log(LogType::Info, "Min Distance             : %d", static_cast<int>(spy.getMinDistance()));
    logger.log(LogType::Info, "Min Object Age           : %s", spy.getTimeWindow().toHumanString(false).c_str());
    logger.log(LogType::Info, "Alarm Grace Period       : %s", interval.c_str());
    logger.log(LogType::Info, "Min Width                : %d", params.minWidth);
    logger.log(LogType::Info, "Min Height               : %d", params.minHeight);
    logger.log(LogType::Info, "Sensitivity              : %f", double(params.sensitivity));
    logger.log(LogType::Info, "Scene Sensitivity        : %f", double(params.sceneSensitivity));
}

/// The rules of "spies_file" too, if there are any. A file that is refused changes nothing: an application without its usual rule
/// would watch nothing.
void addSpiesFile(rktl::Logger& logger, SettingsMap const& settings, SimpleTracker::Params& params)
{
    rktl::String complaint;
    if (!takeSpiesFile(settings, rktl::String::fromEnvVarible("CS_APP_HOME"), params, complaint)) {
        if (!complaint.empty())
            logger.log(LogType::Error, "spies_file is left out, the Direction spy of the settings runs: %s", complaint.c_str());
        return;
    }
    for (EventSpyFactory const& factory : params.spies)
        logger.log(LogType::Info, "Spy                      : %s \"%s\"", factory.getSpy()->getTypeName().c_str(),
            factory.getSpy()->getName().c_str());
}

/// From reading the settings to the end of the frame loop. Nothing of it outlives the pass but port.
Pass runPass(CommandLineArgs const& arguments, rktl::Logger& logger, unsigned int& port)
{
    SettingsMap settings;
    if (!Coordinator::loadXML(logger, settings))
        return fail(logger, "Unable to load settings, stopping.");
    describeApplication();
    if (arguments.has("port"))
        port = arguments.value("port").toUnsignedInt();
    rkvl::Resolution resolution;
    if (!readResolution(settings, resolution))
        return fail(logger, "Unable to parse resolution, exiting ...");
    Coordinator coordinator(port, logger, eventPayload);
    if (!coordinator.initialize(resolution))
        return fail(logger, "Unable to initialize coordinator, exiting ...");
    Direction const spy = readDirection(settings);
    rktl::ElapsedTime const alarmInterval = readAlarmInterval(settings);
    coordinator.setEventGracePeriod(alarmInterval);
    SimpleTracker::Params params = readTrackerParams(settings, spy);
    logSettings(logger, spy, alarmInterval, params);
    addSpiesFile(logger, settings, params);
    return coordinator.process(params) == Coordinator::configurationChanged ? Pass::reload : Pass::ended;
}

} // namespace

/// Passes follow one another until the frame loop ends for another reason than new settings.
int main(int argc, char** argv)
{
    CommandLineArgs const arguments(argc, argv);
    setvbuf(stdout, nullptr, _IOLBF, 0); // log lines leave at once, also through a pipe
    rktl::FileLogger logger(logPath, logSizeLimit);
    logger.start();
    unsigned int port = 0;
    Pass pass = Pass::reload;
    while (pass == Pass::reload)
        pass = runPass(arguments, logger, port);
    return pass == Pass::failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
