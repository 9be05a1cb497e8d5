#pragma once

#include "application/SimpleTracker.h"
#include "misc/rktl_String.h"
#include "streams/rksl_StringMap.h"

class Direction;

namespace rktl {
class ElapsedTime;
}
namespace rkvl {
class Resolution;
}

/// Settings as they were read, text by key. A key that is missing reads as the empty text, and so as 0: the defaults are those
/// of the default settings file.
using SettingsMap = rksl::StringMap<rktl::String>;

/// Reads a settings text: one key for each child of its root element (see SettingsTree.h); a later one replaces an earlier one
/// of its name. The value of a child that has children of its own is the text between its tags as it stands.
/// False, with settings as before, for a text that is not of the format.
bool parseSettings(rktl::String const& text, SettingsMap& settings);

/// The decimal number that the text begins with, white space before it allowed; 0 when there is none.
double decimalValue(rktl::String const& text);

/// "video_resolution". False, and resolution as before, when it is missing or no resolution.
bool readResolution(SettingsMap const& settings, rkvl::Resolution& resolution);

/// The spy that raises the alarm: "angle" (degrees), "tolerance" (degrees), "min_distance" (pixels), "min_age" with
/// "min_age_unit" (the window of time), "max_width" and "max_height" (percent of the frame).
Direction readDirection(SettingsMap const& settings);

/// "alarm_interval" with "alarm_interval_unit".
rktl::ElapsedTime readAlarmInterval(SettingsMap const& settings);

/// Paths of "model_files", which separates them by commas and names them from home on; none without the key.
/// home: the application's; "" for the folder that the process runs in.
rksl::Set<rktl::String> readModelFiles(SettingsMap const& settings, rktl::String const& home);

/// "min_width", "min_height" (pixels), "sensitivity" and "light_sensitivity" (percent), and "model_files" below CS_APP_HOME, with
/// all detectors on and spy, which is copied, as the only rule. Values out of range are not caught here but by
/// SimpleTracker::setParameters.
SimpleTracker::Params readTrackerParams(SettingsMap const& settings, Direction const& spy);
