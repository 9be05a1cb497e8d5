#pragma once

#include "application/Settings.h"

namespace tools {

/// The settings that the application would read from this file. With an empty path: those of the application's home
/// (CS_APP_HOME), its own before the defaults, or else the default settings that came with this program.
/// Throws std::runtime_error.
SettingsMap readSettingsFile(std::string path);

} // namespace tools
