#include "application/Coordinator.h"

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Logger.h"
#include "support/TempFolder.h"
#include "support/virtual_clock.h"
#include "video/rkvl_Resolution.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using rkml::Point2D;

/// Is never started, so that all its lines go to standard error, where the tests read them.
class StderrLogger : public rktl::Logger {
public:
    StderrLogger()
        : Logger("")
    {
    }

protected:
    bool output(rktl::LogType const&, rktl::String const&) override { return true; }
};

/// A coordinator with the stand-in camera and a home of its own.
class CoordinatorTest : public testing::Test {
protected:
    CoordinatorTest()
    {
        std::filesystem::create_directory(mHome / "html");
        for (auto const& [name, value] : std::initializer_list<std::pair<char const*, std::string>>{{"CS_APP_HOME", mHome.path()},
                 {"CSDK_SOURCE", "scene:gate"}, {"CSDK_RESOLUTIONS", "160x120,80x60,80x45"}, {"CSDK_EVENTS", mHome / "events"},
                 {"CSDK_FAULTS", ""}, {"CSDK_DAYNIGHT", ""}, {"CSDK_PACE", "fast"}})
            setenv(name, value.c_str(), 1);
        csdk_settings = {};
    }
    ~CoordinatorTest() noexcept override
    {
        csdk_deinit();
        for (int signal : {SIGTERM, SIGINT, SIGUSR1})
            std::signal(signal, SIG_DFL);
    }

    std::string read(std::string const& name) const
    {
        std::ostringstream text;
        text << std::ifstream(mHome / name).rdbuf();
        return text.str();
    }

    static Event makeEvent(uint32_t uid)
    {
        rktl::TimeStamp const start = rktl::TimeStamp::systemTime();
        Event event({start, rktl::ElapsedTime()}, {start, rktl::ElapsedTime()}, "alarm", 0, 80);
        event.setUID(uid);
        event.setOrigin(mOrigin, false);
        event.addObject(7, mOrigin);
        event.addObject(12, mOrigin);
        return event;
    }

    static inline rktl::url const mOrigin{rktl::String("meridane://*.localsite/*/Spy 0")};
    TempFolder mHome;
    StderrLogger mLogger;
};

TEST_F(CoordinatorTest, SendsEventsWithCountAndTimeFile)
{
    VirtualClock clock;
    Coordinator coordinator(0, mLogger, "the payload");
    setenv("CSDK_FAULTS", "event:1", 1);
    ASSERT_TRUE(coordinator.initialize(rkvl::Resolution(160, 120)));
    testing::internal::CaptureStderr();
    coordinator.onEvent(makeEvent(1));
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find("Error sending APP event: "));
    EXPECT_FALSE(std::filesystem::exists(mHome / "html/event_time.json"));

    testing::internal::CaptureStderr();
    coordinator.onEvent(makeEvent(1)); // the failure left no quiet time and no count
    coordinator.onEvent(makeEvent(1));
    clock.advance(1000);
    Event const second = makeEvent(2);
    coordinator.onEvent(second);
    std::string const log = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, log.find("Sending Event 1 (Confidence 80) for Object ID(s) 7,12\n")) << log;
    EXPECT_NE(std::string::npos, log.find("Sending Event 2 (Confidence 80)")) << log;
    EXPECT_EQ("{\"event_time\":\"" + second.getStart().first.toString("ISO8601") + "\",\"event_id\":2}\n",
        read("html/event_time.json"));
    std::string const sent = read("events");
    EXPECT_EQ(2, std::count(sent.begin(), sent.end(), '\n'));
    EXPECT_NE(std::string::npos, sent.find("\"payload\":\"the payload\""));
}

TEST_F(CoordinatorTest, ChoosesTheSmallestResolutionForOneThatIsNotOffered)
{
    for (auto const& [wanted, chosen] : std::initializer_list<std::pair<rkvl::Resolution, char const*>>{
             {{160, 120}, ""}, {{80, 61}, "80x45"}, {{0, 0}, "80x45"}, {{-160, -120}, "80x45"}}) {
        Coordinator coordinator(0, mLogger, "");
        testing::internal::CaptureStderr();
        EXPECT_TRUE(coordinator.initialize(wanted));
        std::string const log = testing::internal::GetCapturedStderr();
        std::string const note = "No resolution specified, using " + std::string(chosen) + "\n";
        EXPECT_EQ(*chosen != 0, log.find(note) != std::string::npos) << log;
        EXPECT_TRUE(coordinator.initialize(wanted)); // already done
        csdk_deinit();
    }
}

TEST_F(CoordinatorTest, SaysWhyItCannotStart)
{
    for (auto const& [fault, text] :
        std::initializer_list<std::pair<char const*, char const*>>{{"init", "Error initializing video SDK error code = "},
            {"no-resolutions", "Unable to find any resolutions"}, {"set-resolution", "Unable to set resolution to 160x120"}}) {
        setenv("CSDK_FAULTS", fault, 1);
        Coordinator coordinator(0, mLogger, "");
        testing::internal::CaptureStderr();
        EXPECT_FALSE(coordinator.initialize(rkvl::Resolution(160, 120)));
        EXPECT_EQ(Coordinator::failedToStart, coordinator.process({}));
        std::string const log = testing::internal::GetCapturedStderr();
        EXPECT_NE(std::string::npos, log.find(text)) << log;
        EXPECT_NE(std::string::npos, log.find("Not initialized")) << log;
        csdk_deinit();
    }
}

// A stop that comes once initialize has passed takes no frame; what stopped it says how it ends.
TEST_F(CoordinatorTest, TakesNoFrameAfterAStop)
{
    for (int signal : {SIGUSR1, SIGTERM}) {
        Coordinator coordinator(0, mLogger, "");
        ASSERT_TRUE(coordinator.initialize(rkvl::Resolution(160, 120)));
        raise(signal);
        SimpleTracker::Params refused;
        refused.sensitivity = 2; // would fail with the first frame
        EXPECT_EQ(signal == SIGUSR1 ? Coordinator::configurationChanged : Coordinator::stopped, coordinator.process(refused));
        EXPECT_EQ(nullptr, csdk.video); // unloaded
    }
}

TEST_F(CoordinatorTest, ReadsLines)
{
    rkml::LineSegment2D<float> line({1, 2}, {3, 4});
    std::string const first = "<first><x>0.25</x><y> -7e1 </y></first>", second = "<second><x>x</x><y/></second>";
    ASSERT_TRUE(Coordinator::parseLine(first + "\n" + second, line));
    EXPECT_EQ(Point2D<float>(0.25f, -70.0f), line.first());
    EXPECT_EQ(Point2D<float>(0, 0), line.second());
    for (std::string const& text : {std::string(), first, second + first, first + second + "<third/>", first + "<second/>",
             first + "<second><y>1</y><x>2</x></second>", first + "<second><x>1</x></second>", first + second + "</line>x<line>",
             first + "<second>"}) {
        rkml::LineSegment2D<float> kept({1, 2}, {3, 4});
        bool const isLine = Coordinator::parseLine(text, kept);
        EXPECT_EQ(text == first + second + "</line>x<line>", isLine) << text; // what comes after the root does not count
        EXPECT_EQ(isLine ? Point2D<float>(0.25f, -70.0f) : Point2D<float>(1, 2), kept.first());
    }
}

TEST_F(CoordinatorTest, ReadsZonesUpToTheFirstFault)
{
    std::string const triangle = "<polygon><point><x>0</x><y>1</y></point><point><x>2</x><y>3</y></point>"
                                 "<point><x>4</x><y>5</y></point></polygon>";
    rksl::List<rkml::Polygon2D<float>> zones;
    EXPECT_TRUE(Coordinator::parseZones("", zones));
    EXPECT_TRUE(zones.empty());
    EXPECT_TRUE(Coordinator::parseZones(triangle + "<polygon/>", zones));
    ASSERT_EQ(2u, zones.size());
    EXPECT_EQ((std::vector<Point2D<float>>{{0, 1}, {2, 3}, {4, 5}}), zones.front().points());
    EXPECT_TRUE(zones.back().points().empty());
    for (char const* fault : {"<zone/>", "<polygon><corner><x>1</x><y>2</y></corner></polygon>",
             "<polygon><point><x>1</x></point></polygon>", "<polygon><point><x>1</x><y>2</y><z>3</z></point></polygon>"}) {
        zones.clear();
        EXPECT_FALSE(Coordinator::parseZones(triangle + fault + triangle, zones)) << fault;
        EXPECT_EQ(1u, zones.size()) << fault;
    }
}

} // namespace
