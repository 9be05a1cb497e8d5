#include "camera/csdk.h"
#include "camera/sources/SceneSource.h"
#include "camera/sources/Y4mWriter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <regex>
#include <set>
#include <thread>

using namespace camera;
using Clock = std::chrono::steady_clock;
using Sizes = std::set<std::pair<int, int>>;

namespace {

char const* const VARIABLES[] = {
    "CSDK_SOURCE", "CSDK_RESOLUTIONS", "CSDK_FPS", "CSDK_PACE", "CSDK_LOOP", "CSDK_DAYNIGHT", "CSDK_EVENTS", "CSDK_FAULTS"};

struct DayNightReport {
    csdk_daynight mode;
    std::thread::id thread;
};
std::promise<DayNightReport>* dayNightReport = nullptr;

void onDayNight(csdk_daynight mode)
{
    dayNightReport->set_value({mode, std::this_thread::get_id()});
}

int send(std::string const& payload)
{
    return csdk_event_send(payload.data(), 0, payload.size());
}

/// The library with an environment of the test's own; files live in a folder that goes with it.
class Csdk : public testing::Test {
protected:
    Csdk()
    {
        for (char const* name : VARIABLES)
            unsetenv(name);
        csdk_settings = {};
        set("CSDK_SOURCE", "scene:gate");
        set("CSDK_PACE", "fast");
        set("CSDK_EVENTS", mFolder / "events");
    }

    ~Csdk() override
    {
        stop();
        for (char const* name : VARIABLES)
            unsetenv(name);
    }

    void set(char const* name, std::string const& value) { setenv(name, value.c_str(), 1); }

    /// A video of 2 x 2 pixels whose frame i has luma i. cut: bytes missing at its end.
    void setVideo(int frames, FrameRate rate, size_t cut = 0)
    {
        std::string const path = mFolder / "video.y4m";
        std::ofstream file(path, std::ios::binary);
        Y4mWriter writer(file, 2, 2, rate);
        Picture picture;
        picture.resize(2, 2);
        for (int i = 0; i < frames; ++i) {
            std::fill(picture.bytes.begin(), picture.bytes.end(), uint8_t(i));
            writer.write(picture);
        }
        file.close();
        std::filesystem::resize_file(path, std::filesystem::file_size(path) - cut);
        set("CSDK_SOURCE", path);
    }

    void start()
    {
        int const error = csdk_init();
        ASSERT_EQ(0, error) << csdk_strerr(error);
        mFrame = csdk_get_vframe(csdk.video);
        ASSERT_NE(nullptr, mFrame);
    }

    void stop()
    {
        csdk_free_vframe(mFrame);
        mFrame = nullptr;
        csdk_deinit();
    }

    /// Luma of the next frame, or -1 when none came.
    int next() { return csdk_refresh_vframe(mFrame) == 0 ? csdk_vframe_ptr(mFrame)[0] : -1; }

    bool frameIs(Picture const& picture) const
    {
        return std::equal(picture.bytes.begin(), picture.bytes.end(), csdk_vframe_ptr(mFrame));
    }

    Sizes resolutions()
    {
        Sizes sizes;
        int32_t width = 0, height = 0;
        while (csdk_next_resolution(csdk.video, &width, &height) == 0)
            sizes.insert({width, height});
        return sizes;
    }

    std::vector<nlohmann::json> events() const
    {
        std::vector<nlohmann::json> list;
        std::ifstream file(mFolder / "events");
        for (std::string line; std::getline(file, line);)
            list.push_back(nlohmann::json::parse(line));
        return list;
    }

    TempFolder const mFolder;
    csdk_vframe* mFrame = nullptr;
};

} // namespace

TEST_F(Csdk, DeliversTheSceneFromItsFirstFrameToItsLastAndAgainAfterDeinit)
{
    for (int round = 0; round < 2; ++round) {
        start();
        EXPECT_EQ((Sizes{{160, 120}, {80, 60}}), resolutions());
        EXPECT_EQ((Sizes{{160, 120}, {80, 60}}), resolutions()) << "begins anew after the last one";
        ASSERT_EQ(160, csdk_vframe_width(mFrame));
        ASSERT_EQ(120, csdk_vframe_height(mFrame));
        SceneSource scene("gate", {25, 1});
        Picture picture;
        while (scene.advance()) {
            scene.picture(picture);
            ASSERT_EQ(0, csdk_refresh_vframe(mFrame));
            ASSERT_TRUE(frameIs(picture)) << scene.time();
        }
        EXPECT_NE(0, csdk_refresh_vframe(mFrame));
        EXPECT_TRUE(frameIs(picture)) << "the last frame stays";
        csdk_free_vframe(mFrame);
        mFrame = nullptr;
        EXPECT_EQ(nullptr, csdk_get_vframe(csdk.video));
        stop();
        EXPECT_EQ(nullptr, csdk.video);
        EXPECT_EQ(nullptr, csdk.image);
    }
}

TEST_F(Csdk, BadVariablesAreErrorsThatNameThem)
{
    std::pair<char const*, char const*> const cases[] = {
        {"CSDK_SOURCE", "scene:nowhere"},
        {"CSDK_SOURCE", "/nonexistent/video.y4m"},
        {"CSDK_RESOLUTIONS", "640x480,"},
        {"CSDK_RESOLUTIONS", "4097x4096"},
        {"CSDK_RESOLUTIONS", "4294967297x1"},
        {"CSDK_FPS", "fast"},
        {"CSDK_DAYNIGHT", "day@0,night"},
        {"CSDK_DAYNIGHT", "day@0,night@0"},
        {"CSDK_DAYNIGHT", "day@0,night@nan"},
        {"CSDK_FAULTS", "refresh:"},
        {"CSDK_FAULTS", "event:1@2"},
        {"CSDK_FAULTS", "event,"},
    };
    for (auto const& [name, value] : cases) {
        SCOPED_TRACE(std::string(name) + "=" + value);
        std::string const before = std::getenv(name) == nullptr ? "" : std::getenv(name);
        set(name, value);
        int const error = csdk_init();
        EXPECT_NE(0, error);
        EXPECT_NE(std::string::npos, std::string(csdk_strerr(error)).find(value)) << csdk_strerr(error);
        EXPECT_EQ(nullptr, csdk.video);
        csdk_deinit();
        set(name, before);
    }
    ASSERT_EQ(0, csdk_init());
    EXPECT_NE(0, csdk_init()) << "initialised already";
    EXPECT_NE(nullptr, csdk.video);
}

TEST_F(Csdk, FaultsComeAsAskedFor)
{
    setVideo(5, {25, 1});
    set("CSDK_FAULTS", "refresh:2@3,event:1"); // two failures after three frames, and no frame is lost
    start();
    for (int expected : {0, 1, 2, -1, -1, 3, 4, -1})
        EXPECT_EQ(expected, next());
    EXPECT_NE(0, send("lost"));
    EXPECT_EQ(0, send("kept"));
    ASSERT_EQ(1u, events().size());
    EXPECT_EQ("kept", events()[0]["payload"]);
    stop();

    set("CSDK_FAULTS", "refresh");
    start();
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(-1, next());
    csdk_free_vframe(mFrame);
    mFrame = csdk_get_vframe(csdk.video);
    EXPECT_NE(nullptr, mFrame) << "failing is not the end";
}

TEST_F(Csdk, EventsAreWholeJsonLinesWhateverTheyHold)
{
    ASSERT_EQ(0, csdk_init());
    std::string const payload = "  <a b=\"c\">\n\ttext \\ \xc3\xa9\n</a>  ";
    EXPECT_EQ(0, send(payload));
    EXPECT_EQ(0, send(std::string("bytes \xff\0 after", 14)));
    EXPECT_EQ(0, csdk_event_send("cut here", 0, 3));
    csdk_deinit();
    ASSERT_EQ(0, csdk_init()) << "the file is appended to";
    EXPECT_EQ(0, send(""));
    EXPECT_NE(0, csdk_event_send(nullptr, 0, 0));

    auto const lines = events();
    ASSERT_EQ(4u, lines.size());
    EXPECT_EQ(payload, lines[0]["payload"]);
    EXPECT_EQ(std::string("bytes \xef\xbf\xbd\0 after", 16), lines[1]["payload"]) << "no UTF-8 becomes the replacement character";
    EXPECT_EQ("cut", lines[2]["payload"]);
    EXPECT_EQ("", lines[3]["payload"]);
    EXPECT_TRUE(std::regex_match(lines[0]["time"].get<std::string>(), std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)")));
}

TEST_F(Csdk, LoopsAndBrokenVideos)
{
    setVideo(3, {25, 1});
    set("CSDK_LOOP", "1");
    start();
    for (int expected : {0, 1, 2, 0, 1, 2, 0})
        EXPECT_EQ(expected, next());
    stop();

    setVideo(0, {25, 1}); // nothing to start over with
    start();
    EXPECT_EQ(-1, next());
    stop();

    setVideo(3, {25, 1}, 2); // the third frame is cut
    start();
    for (int expected : {0, 1, -1, -1})
        EXPECT_EQ(expected, next());
    csdk_free_vframe(mFrame);
    EXPECT_EQ(nullptr, mFrame = csdk_get_vframe(csdk.video));
}

TEST_F(Csdk, ASlowReaderGetsTheNewestFrameAndNeverMissesTheLast)
{
    setVideo(40, {1000, 1});
    set("CSDK_PACE", "realtime");
    start();
    int const first = next();
    // A reader that is busy for far longer than the video lasts: there is nothing to wait for but the clock itself.
    std::this_thread::sleep_until(Clock::now() + std::chrono::milliseconds(400));
    int second = next();
    EXPECT_GT(second, first + 1);
    while (second != 39 && second != -1)
        second = next();
    EXPECT_EQ(39, second);
    EXPECT_EQ(-1, next());
}

TEST_F(Csdk, DayAndNightFollowTheScheduleOnAThreadOfTheLibrary)
{
    std::promise<DayNightReport> promise;
    dayNightReport = &promise;
    set("CSDK_DAYNIGHT", "day@0,night@0.2");
    csdk_settings.callbacks_enabled = 1;
    csdk_settings.on_daynight = &onDayNight;
    ASSERT_EQ(0, csdk_init());
    EXPECT_EQ(CSDK_DAY, csdk_get_daynight_mode(csdk.image));

    auto future = promise.get_future();
    ASSERT_EQ(std::future_status::ready, future.wait_for(std::chrono::seconds(20)));
    DayNightReport const report = future.get();
    EXPECT_EQ(CSDK_NIGHT, report.mode);
    EXPECT_NE(std::this_thread::get_id(), report.thread);
    EXPECT_EQ(CSDK_NIGHT, csdk_get_daynight_mode(csdk.image));
    csdk_deinit();

    set("CSDK_DAYNIGHT", "night@0,day@1000"); // csdk_deinit does not wait for the schedule
    ASSERT_EQ(0, csdk_init());
    EXPECT_EQ(CSDK_NIGHT, csdk_get_daynight_mode(csdk.image));
}
