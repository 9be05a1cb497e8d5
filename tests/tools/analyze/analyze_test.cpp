#include "analyze_program.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

constexpr char const* SETTINGS =
    "<settings><angle>180</angle><tolerance>30</tolerance><min_distance>60</min_distance><min_age>1</min_age>"
    "<min_age_unit>second</min_age_unit><max_width>80</max_width><max_height>80</max_height><min_width>8</min_width>"
    "<min_height>8</min_height><sensitivity>50</sensitivity><light_sensitivity>50</light_sensitivity>"
    "<alarm_interval>10</alarm_interval><alarm_interval_unit>second</alarm_interval_unit></settings>";

/// A dump of gray frames of 16 x 16 pixels, 40 ms apart, and whatever else its lines say.
void makeDump(TempFolder const& folder, std::vector<std::string> const& lines)
{
    std::filesystem::create_directories(folder / "images");
    std::string all;
    for (size_t i = 0; i < lines.size(); ++i) {
        all += lines[i] + "\n";
        put(folder / ("images/00000" + std::to_string(i) + "-Native_Image.pgm"), "P5\n16 16\n255\n" + std::string(256, 'a'));
    }
    put(folder / "frames.jsonl", all);
    put(folder / "settings", SETTINGS);
}

} // namespace

// In the scene one person, in colour, walks to the right from 7 s to 15 s and one to the left from 18 s, both with 22 pixels a
// second.
TEST(Analyze, TellsOfTheOneWhoComesTheWrongWayAndRepeatsItselfFromItsDump)
{
    TempFolder folder;
    put(folder / "settings", SETTINGS);
    std::string const dump = folder / "dump", events = folder / "events", shots = folder / "shots";
    auto const first = analyze({"scene:gate", "--settings", folder / "settings", "--limit", "24", "--dump", dump, "--images",
        "Native_Image", "--events", events, "--snapshots", shots});
    ASSERT_EQ(0, first.status) << first.text;
    ASSERT_EQ(2u, first.lines.size()) << first.text;
    Json const& alarm = first.lines[0];
    int64_t const position = alarm["position_ms"];
    EXPECT_GE(position, 18000 + 60 * 1000 / 22); // after the least distance
    EXPECT_LT(position, 24000);
    EXPECT_EQ(1704067200000 + position, alarm["time_ms"]); // from 2024-01-01T00:00:00Z on
    EXPECT_EQ("alarm", alarm["type"]);
    EXPECT_EQ("DirectionSpy", alarm["spy_type"]);
    EXPECT_EQ(100, alarm["confidence"]);
    ASSERT_EQ(1u, alarm["objects"].size());
    Json const& summary = first.lines[1]["summary"];
    EXPECT_EQ(600, summary["frames"]); // 24 s at 25 frames
    EXPECT_EQ(23960, summary["duration_ms"]);
    EXPECT_EQ(0, summary["failed_frames"]);
    EXPECT_EQ(1, summary["sent"]);

    // The frame of the alarm has the object, the event and that it was sent; the file of events begins with it.
    auto const frames = jsonLines(dump + "/frames.jsonl");
    ASSERT_EQ(600u, frames.size());
    Json const& frame = frames[size_t(position / 40)];
    EXPECT_EQ(alarm["frame"], frame["frame"]);
    EXPECT_EQ(true, frame["colour"]);
    EXPECT_EQ("160x120", frame["attributes"]["native-resolution"]);
    EXPECT_EQ(Json::array({alarm["uid"]}), frame["sent"]);
    EXPECT_EQ(alarm["uid"], frame["events"][0]["uid"]);
    EXPECT_EQ(alarm["objects"][0], frame["objects"][0]["id"]);
    EXPECT_EQ(1u, frame["regions"].size());
    EXPECT_EQ(1, std::count_if(frames.begin(), frames.end(), [](Json const& line) { return !line["sent"].empty(); }));
    auto const told = jsonLines(events);
    ASSERT_EQ(summary["events"], told.size());
    EXPECT_EQ(alarm, told[0]);
    std::string const number = std::to_string(1000000 + alarm["frame"].get<int>()).substr(1);
    EXPECT_EQ("\x89PNG", contents(shots + "/" + number + "-alarm-1.png").substr(0, 4));
    EXPECT_EQ("P6\n160 120\n255\n", contents(dump + "/images/" + number + "-Native_Image.ppm").substr(0, 15));

    // Its pictures give the same run again, byte for byte, by the settings that it keeps ...
    auto const again = analyze({dump, "--dump", folder / "again", "--images", "Native_Image"});
    EXPECT_EQ(first.text, again.text);
    EXPECT_EQ(contents(dump + "/frames.jsonl"), contents(folder / "again/frames.jsonl"));
    EXPECT_EQ(contents(dump + "/run.json"), contents(folder / "again/run.json"));

    // ... and by others another one: to the right it is the first person, whose window and distance are over before 15 s.
    put(folder / "right.json", R"({"settings": {"angle": "0"}})");
    auto const right = analyze(
        {dump, "--settings", folder / "settings", "--run", folder / "right.json", "--start-time", "2020-02-02T00:00:00Z"});
    ASSERT_EQ(2u, right.lines.size()) << right.text;
    EXPECT_GE(right.lines[0]["position_ms"], 7000 + 60 * 1000 / 22);
    EXPECT_LT(right.lines[0]["position_ms"], 15000);
    EXPECT_EQ(1580601600000 + right.lines[0]["position_ms"].get<int64_t>(), right.lines[0]["time_ms"]);
}

// The scene's first person goes to the right, the second to the left; the settings watch for the second.
TEST(Analyze, RunsSpiesOfAFileBesideThoseOfTheSettingsOrAlone)
{
    TempFolder folder;
    put(folder / "settings", SETTINGS);
    put(folder / "spies.xml",
        "<DirectionSpy><EventSpy><name>rightwards</name><priority>3</priority></EventSpy><angle>0</angle><tolerance>30</"
        "tolerance>"
        "<min-distance>60</min-distance><time-window unit=\"second\">1</time-window></DirectionSpy>");
    std::vector<std::string> arguments = {"scene:gate", "--settings", folder / "settings", "--limit", "24", "--spies",
        folder / "spies.xml", "--dump", folder / "dump", "--images", "Native_Image"};
    auto const both = analyze(arguments);
    ASSERT_EQ(3u, both.lines.size()) << both.text;
    EXPECT_LT(both.lines[0]["position_ms"], 15000);
    EXPECT_GT(both.lines[1]["position_ms"], 18000);
    EXPECT_EQ(both.text, analyze({folder / "dump"}).text); // its run file has the spies

    arguments.push_back("--spies-only");
    auto const alone = analyze(arguments);
    ASSERT_EQ(2u, alone.lines.size()) << alone.text;
    EXPECT_EQ(both.lines[0]["position_ms"], alone.lines[0]["position_ms"]);
}

TEST(Analyze, ListsSpiesThatItTakesBack)
{
    TempFolder folder;
    put(folder / "settings", SETTINGS);
    ChildProcess program(CONTRAFLOW_BINARY_DIR "/tools/contraflow-analyze", {"--list-spies"}, {});
    ASSERT_EQ(0, program.waitForExit());
    put(folder / "spies.xml", program.text());
    EXPECT_NE(std::string::npos, program.text().find("<!-- Contraflow -->\n<DirectionSpy>\n  <EventSpy>\n")) << program.text();
    auto const outcome = analyze(
        {"scene:gate", "--settings", folder / "settings", "--limit", "1", "--spies", folder / "spies.xml", "--spies-only"});
    EXPECT_EQ(0, outcome.status) << outcome.text;
}

TEST(Analyze, DumpsAllImagesOfGrayFramesAtTheirOwnTimes)
{
    TempFolder folder;
    makeDump(folder,
        {R"({"frame":0,"position_ms":500,"time_ms":1000000,"colour":false})",
            R"({"frame":1,"position_ms":540,"time_ms":1000050,"colour":false})"});
    put(folder / "run.json", R"({"mode": 3})"); // on top of the settings
    std::filesystem::create_directories(folder / "dump/images");
    put(folder / "dump/images/000007-Native_Image.pgm", "of an earlier dump");
    put(folder / "dump/images/holiday.ppm", "of somebody else");
    auto const outcome =
        analyze({folder.path(), "--settings", folder / "settings", "--run", folder / "run.json", "--dump", folder / "dump"});
    ASSERT_EQ(0, outcome.status) << outcome.text;
    auto const frames = jsonLines(folder / "dump/frames.jsonl");
    ASSERT_EQ(2u, frames.size());
    EXPECT_EQ(0, frames[0]["position_ms"]);
    EXPECT_EQ(40, frames[1]["position_ms"]);
    EXPECT_EQ(1000050, frames[1]["time_ms"]);
    EXPECT_EQ(false, frames[1]["colour"]);
    EXPECT_EQ(3, Json::parse(contents(folder / "dump/run.json"))["mode"]);
    for (std::string const name : {"Activity", "Background", "Foreground", "Native", "Peripheral", "Processed"})
        EXPECT_TRUE(std::filesystem::exists(folder / ("dump/images/000001-" + name + "_Image.pgm")) ||
            std::filesystem::exists(folder / ("dump/images/000001-" + name + "_Image.ppm")))
            << name;
    EXPECT_FALSE(std::filesystem::exists(folder / "dump/images/000007-Native_Image.pgm"));
    EXPECT_TRUE(std::filesystem::exists(folder / "dump/images/holiday.ppm"));
}

TEST(Analyze, SaysWhatIsWrongWithItsInput)
{
    TempFolder folder;
    put(folder / "settings", SETTINGS);
    put(folder / "prolog", std::string("<?xml version=\"1.0\"?>") + SETTINGS);
    put(folder / "far.json", R"({"sensitivity": 1.5})");
    put(folder / "half.json", "{\"settings\": ");
    put(folder / "bad.y4m", "YUV4MPEG2 W16 H16\nFRAME\nshort");
    struct {
        std::vector<std::string> arguments;
        int status;
        char const* text;
    } const cases[] = {
        {{}, 2, "INPUT"},
        {{"scene:gate", "--speed", "3"}, 2, "--speed"},
        {{"scene:gate", "--start-time", "noon"}, 2, "noon"},
        {{"scene:gate", "--dump", folder / "d", "--images", "Sepia_Image"}, 2, "Native Image"},
        {{"scene:gate", "--spies-only"}, 2, "--spies"},
        {{"scene:gate", "--settings", folder / "settings", "--spies", folder / "none.xml"}, 1, "none.xml: cannot be read"},
        {{"scene:gate", "--settings", folder / "settings", "--spies", folder / "bad.y4m"}, 1, "bad.y4m: there is text between"},
        {{"scene:gate", "--settings", folder / "none"}, 1, "none: cannot be read"},
        {{"scene:gate", "--settings", folder / "prolog"}, 1, "prolog: is no settings text"},
        {{"scene:gate", "--settings", folder / "settings", "--run", folder / "far.json"}, 1,
            "Invalid Sensitivity: SimpleTracker (474)"},
        {{"scene:gate", "--run", folder / "half.json"}, 1, "half.json: is no JSON"},
        {{"scene:gate", "--settings", folder / "settings", "--events", folder / "no/such"}, 1, "no/such: cannot be written"},
        {{folder / "bad.y4m", "--settings", folder / "settings"}, 1, "ends in the middle of frame 0"},
        {{folder.path(), "--settings", folder / "settings"}, 1, "is no folder of a dump"},
    };
    for (auto const& c : cases) {
        auto const outcome = analyze(c.arguments);
        EXPECT_EQ(c.status, outcome.status) << outcome.text;
        EXPECT_NE(std::string::npos, outcome.text.find(c.text)) << c.text << " in " << outcome.text;
    }
}

TEST(Analyze, NamesTheLineOfADumpThatCannotBe)
{
    char const* const good = R"({"frame":0,"position_ms":40,"time_ms":1,"colour":false})";
    for (char const* const line : {"", "{", "[]", "null", R"({"frame":1})", R"({"frame":-1,"position_ms":80,"colour":false})",
             R"({"frame":1,"position_ms":39,"colour":false})", R"({"frame":1,"position_ms":1e300,"colour":false})",
             R"({"frame":1,"position_ms":18446744073709551615,"colour":false})", R"({"frame":1,"position_ms":80,"colour":1})"}) {
        SCOPED_TRACE(line);
        TempFolder folder;
        makeDump(folder, {good, line});
        auto const outcome = analyze({folder.path(), "--settings", folder / "settings"});
        EXPECT_EQ(1, outcome.status);
        EXPECT_NE(std::string::npos, outcome.text.find("frames.jsonl, line 2: ")) << outcome.text;
    }
    TempFolder folder;
    makeDump(folder, {R"({"frame":0,"position_ms":0,"colour":true})"}); // but its picture is gray
    EXPECT_EQ(1, analyze({folder.path(), "--settings", folder / "settings"}).status);
    EXPECT_EQ(1, analyze({folder.path(), "--settings", folder / "settings", "--dump", folder.path()}).status);
    EXPECT_FALSE(contents(folder / "frames.jsonl").empty());
}
