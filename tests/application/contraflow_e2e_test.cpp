#include "camera/sources/Y4mWriter.h"
#include "support/contraflow.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace std::chrono_literals;

TEST_F(Contraflow, RunsUntilItIsTerminated)
{
    writeSettings(settingsWith("<angle>90</angle><max_width>50</max_width><alarm_interval>1</alarm_interval>"
                               "<alarm_interval_unit>minute</alarm_interval_unit><sensitivity>50</sensitivity>"));
    ChildProcess app = start();
    for (char const* line : {"Set resolution to 160x120", "Current Day/Night mode is day", "Alarm Trajectory         : 90",
             "Max Width                : 0.500000", "Alarm Grace Period       : 1 minute", "Alarm Grace Period       : 1 minute",
             "Sensitivity              : 0.500000", "Using denormalized sensitivity:  0.900000", "Now processing in color mode"})
        ASSERT_TRUE(app.waitFor(line)) << line << "\n" << app.text();
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(2s)) << app.text();
    for (char const* line : {"Freeing vframe ...", "SDK Unloaded", "Exiting ..."})
        EXPECT_TRUE(app.waitFor(line)) << line;
}

TEST_F(Contraflow, StartsOverWithNewSettings)
{
    writeSettings(settingsWith("<angle>10</angle>"), "default_settings_xml.txt");
    ChildProcess app = start({{"CSDK_DAYNIGHT", "night"}});
    ASSERT_TRUE(app.waitFor("No custom settings, loading default xml."));
    ASSERT_TRUE(app.waitFor("Now processing in grayscale mode")) << app.text();
    for (int angle : {20, 30}) { // more than once
        writeSettings(settingsWith("<angle>" + std::to_string(angle) + "</angle>"));
        app.signal(SIGUSR1);
        ASSERT_TRUE(app.waitFor("Configuration change detected ...")) << app.text();
        ASSERT_TRUE(app.waitFor("Alarm Trajectory         : " + std::to_string(angle))) << app.text();
        ASSERT_TRUE(app.waitFor("Now processing in grayscale mode")) << app.text();
    }
    app.signal(SIGINT);
    EXPECT_EQ(0, app.waitForExit(2s)) << app.text();
}

TEST_F(Contraflow, RefusesToStartWithoutUsableSettings)
{
    auto const expectFailure = [&](std::vector<char const*> const& lines, std::map<std::string, std::string> const& camera = {}) {
        SCOPED_TRACE(lines.front());
        ChildProcess app = start(camera);
        EXPECT_EQ(1, app.waitForExit());
        for (char const* line : lines)
            EXPECT_TRUE(app.waitFor(line)) << line << "\n" << app.text();
        EXPECT_EQ(camera.empty(), app.text().find("SDK") == std::string::npos) << app.text(); // the camera was not called
    };
    expectFailure(
        {"No custom settings, loading default xml.", "No default settings available.", "Unable to load settings, stopping."});
    writeSettings("<?xml version=\"1.0\"?><s></s>");
    expectFailure({"Failed to parse xml into a tree.", "Unable to load settings, stopping."});
    writeSettings("<s><video_resolution>large</video_resolution></s>");
    expectFailure({"Unable to parse resolution, exiting ..."});
    writeSettings(settingsWith(""));
    expectFailure({"Error initializing video SDK error code = ", "Unable to initialize coordinator, exiting ..."},
        {{"CSDK_FAULTS", "init"}});
}

TEST_F(Contraflow, EndsWithTheVideo)
{
    writeSettings(settingsWith(""));
    camera::Picture picture;
    picture.resize(160, 120);
    std::ofstream video(mHome / "short.y4m", std::ios::binary);
    camera::Y4mWriter writer(video, 160, 120, {25, 1});
    for (int i = 0; i < 5; ++i)
        writer.write(picture);
    video.close();
    ChildProcess app = start({{"CSDK_SOURCE", mHome / "short.y4m"}, {"CSDK_PACE", "fast"}});
    EXPECT_EQ(0, app.waitForExit(30s));
    for (char const* line : {"csdk_refresh_vframe failed.", "Unloading SDK ...", "Exiting ..."})
        EXPECT_TRUE(app.waitFor(line)) << line << "\n" << app.text();
}

TEST_F(Contraflow, FollowsDayAndNight)
{
    writeSettings(settingsWith(""));
    ChildProcess app = start({{"CSDK_DAYNIGHT", "day@0,night@0.5,day@1"}});
    for (char const* mode : {"color", "grayscale", "color"})
        ASSERT_TRUE(app.waitFor(std::string("Now processing in ") + mode + " mode")) << app.text();
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(2s));
}

TEST_F(Contraflow, RunsTheSpiesOfAFileWhereItCanReadOne)
{
    writeSettings(settingsWith("<angle>270</angle><spies_file>html/spies.xml</spies_file>"));
    std::ofstream(mHome / "html/spies.xml")
        << "<DirectionSpy><EventSpy><name>rightwards</name></EventSpy><angle>0</angle>"
           "<tolerance>30</tolerance><time-window unit=\"second\">1</time-window></DirectionSpy>";
    auto const expectLines = [&](char const* program, std::vector<std::string> const& lines) {
        ChildProcess app = start({}, program);
        for (std::string const& line : lines)
            EXPECT_TRUE(app.waitFor(line)) << line << "\n" << app.text();
        app.signal(SIGTERM);
        EXPECT_EQ(0, app.waitForExit(2s)) << app.text();
    };
    expectLines("tests/contraflow_pugixml",
        {"Spy                      : DirectionSpy \"\"", "Spy                      : DirectionSpy \"rightwards\"",
            "Now processing"});
    expectLines("tests/contraflow_null",
        {"spies_file is left out, the Direction spy of the settings runs: " + (mHome / "html/spies.xml") +
                ": this build reads no XML documents",
            "Now processing"});
}

// A camera that fails for good is tried again at intervals; a stop does not wait for them.
TEST_F(Contraflow, IsStoppedWhileTheCameraFails)
{
    writeSettings(settingsWith(""));
    ChildProcess app = start({{"CSDK_FAULTS", "refresh"}});
    ASSERT_TRUE(app.waitFor("csdk_refresh_vframe failed.")) << app.text();
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(2s)) << app.text();
    EXPECT_TRUE(app.waitFor("SDK Unloaded"));
}

} // namespace
