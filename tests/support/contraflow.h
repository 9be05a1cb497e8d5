#pragma once

#include "support/TempFolder.h"
#include "support/child_process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

inline std::string settingsWith(std::string const& settings)
{
    return "<s><video_resolution>160x120</video_resolution>" + settings + "</s>";
}

/// The application as a camera starts it, with the stand-in library and a home of its own.
class Contraflow : public testing::Test {
protected:
    Contraflow() { std::filesystem::create_directory(mHome / "html"); }

    void writeSettings(std::string const& text, std::string const& name = "settings_xml.txt")
    {
        std::ofstream(mHome / ("html/" + name)) << text;
    }

    /// program: below the folder that things are built in.
    ChildProcess start(std::map<std::string, std::string> const& camera = {}, std::string const& program = "projects/contraflow",
        std::vector<std::string> const& arguments = {})
    {
        std::map<std::string, std::string> environment = {{"CS_APP_HOME", mHome.path()}, {"CSDK_SOURCE", "scene:gate"},
            {"CSDK_RESOLUTIONS", ""}, {"CSDK_FPS", ""}, {"CSDK_PACE", "realtime"}, {"CSDK_LOOP", ""}, {"CSDK_DAYNIGHT", ""},
            {"CSDK_EVENTS", mHome / "events"}, {"CSDK_FAULTS", ""}};
        for (auto const& [name, value] : camera)
            environment[name] = value;
        return ChildProcess(CONTRAFLOW_BINARY_DIR "/" + program, arguments, environment);
    }

    TempFolder mHome;
};
