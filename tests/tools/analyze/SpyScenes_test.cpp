#include "analyze_program.h"
#include "camera/sources/Scene.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <map>

// Whole runs over built-in scenes in which it is known who does what when. What a spy has to say of a scene is the list of its
// events, each with who was on the scene and between which seconds it has to begin; there may be no others.

namespace {

constexpr char const* SETTINGS =
    "<settings><angle>0</angle><tolerance>0</tolerance><min_distance>60</min_distance><min_age>1</min_age>"
    "<min_age_unit>second</min_age_unit><max_width>80</max_width><max_height>80</max_height><min_width>5</min_width>"
    "<min_height>5</min_height><sensitivity>50</sensitivity><light_sensitivity>50</light_sensitivity>"
    "<alarm_interval>0</alarm_interval><alarm_interval_unit>second</alarm_interval_unit></settings>";

struct Expected {
    std::string what; // "alarm type, subtitle and actors"
    double from, to;  // seconds in which the event begins
};

struct Found {
    std::string what;
    double begin, end; // seconds: first and last report
};

std::vector<Found> eventsOf(std::string const& scene, std::string const& spies)
{
    TempFolder folder;
    put(folder / "settings", SETTINGS);
    std::string const everyFrame = "<processing-interval unit=\"millisecond\">0</processing-interval>";
    put(folder / "spies.xml", (spies.starts_with("<processing-interval") ? "" : everyFrame) + spies);
    Outcome const run = analyze({"--settings", folder / "settings", "--spies", folder / "spies.xml", "--spies-only", "--events",
        folder / "events", "scene:" + scene});
    EXPECT_EQ(0, run.status) << run.text;
    camera::Scene const truth = camera::makeScene(scene);
    std::vector<Found> found;
    std::map<int, size_t> places; // by uid
    for (Json const& event : jsonLines(folder / "events")) {
        double const time = event["position_ms"].get<double>() / 1000.0;
        auto const [place, isNew] = places.try_emplace(event["uid"], found.size());
        if (isNew) {
            std::string what = event["type"].get<std::string>();
            if (event["subtitle"] != "")
                what += " " + event["subtitle"].get<std::string>();
            for (camera::SceneObject const& object : truth.objectsAt(event["position_ms"]))
                what += " " + std::to_string(object.actor->id);
            found.push_back({what, time, time});
        }
        found[place->second].end = time;
    }
    return found;
}

void expectEvents(std::vector<Found> const& found, std::vector<Expected> const& expected)
{
    for (size_t i = 0; i < std::max(found.size(), expected.size()); ++i) {
        EXPECT_EQ(i < expected.size() ? expected[i].what : "nothing more", i < found.size() ? found[i].what : "missing");
        if (i >= found.size() || i >= expected.size())
            continue;
        EXPECT_GE(found[i].begin, expected[i].from) << found[i].what;
        EXPECT_LE(found[i].begin, expected[i].to) << found[i].what;
    }
}

/// A spy with a name and an alarm type of that text.
std::string spy(std::string const& element, std::string const& name, std::string const& keys, std::string const& base = "")
{
    return "<" + element + "><EventSpy><name>" + name + "</name><alarm-type>" + name + "</alarm-type>" + base + "</EventSpy>" +
        keys + "</" + element + ">";
}

std::string corners(std::string const& item, int left, int top, int right, int bottom)
{
    std::string text = "<" + item + ">";
    for (auto const& [x, y] : {std::pair(left, top), std::pair(right, top), std::pair(right, bottom), std::pair(left, bottom)})
        text += "<vertex x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\"/>";
    return text + "</" + item + ">";
}

/// The example of a type in the handbook of spies.
std::string exampleOf(std::string const& type)
{
    std::string const book = contents(CONTRAFLOW_SOURCE_DIR "/docs/spies.md");
    std::string const fence = "```xml\n";
    size_t const chapter = book.find(": `" + type + "`\n");
    size_t const begin = book.find(fence, chapter) + fence.size();
    EXPECT_NE(std::string::npos, chapter) << type;
    return book.substr(begin, book.find("```", begin) - begin);
}

std::string const LINE = "<first x=\"0.5\" y=\"0.25\"/><second x=\"0.5\" y=\"0.7\"/>"; // column 80, rows 30 to 84

} // namespace

// The walkers are 12 wide and make 30 pixels a second; a shadow reaches 2 further to either side. 1 goes to the right from column
// -12 at 6 s, and is past column 80 after 92 pixels: at 9.07 s. 2 goes to the left from 160 at 14 s, reaches 80 after 80 pixels
// and is past it after 92. 3 is past it at 25.07 s, turns back at 26 s in column 108 and touches it again 28 pixels later. 4
// turns back before it, and the middle of 5 walks below its end.
TEST(SpyScenes, LineIsCrossedOnceByEachAndNeitherShortOfItNorBesideIt)
{
    auto const found = eventsOf("yard",
        spy("LineCrossingSpy", "both", LINE) + spy("LineCrossingSpy", "right", LINE + "<direction>1</direction>") +
            spy("LineCrossingSpy", "touched-left", LINE + "<cross-line>0</cross-line><direction>2</direction>"));
    expectEvents(found,
        {{"both 1", 9.0, 9.4}, {"right 1", 9.0, 9.4}, {"touched-left 2", 16.5, 16.9}, {"both 2", 17.0, 17.4},
            {"both 3", 25.0, 25.4}, {"right 3", 25.0, 25.4}});
    ASSERT_EQ(6u, found.size());
    EXPECT_NEAR(26.9, found[4].end, 0.2) << "3 has come back";
}

// 1 stands from 8.5 s to 16.5 s. The steps before that lie within 5 pixels of its mean place soon, so that up to half a second of
// walking counts. 2 stands for 3 s; 3 drifts by 3 pixels a second, so its mean of 5 s lies 7.5 behind.
TEST(SpyScenes, IdleIsWhoStandsForTheWaitTime)
{
    auto const found =
        eventsOf("bench", spy("IdleSpy", "idle", "<wait-time unit=\"second\">5</wait-time><movement>5</movement>"));
    expectEvents(found, {{"idle 1", 13.0, 13.7}});
    ASSERT_EQ(1u, found.size());
    EXPECT_NEAR(16.6, found[0].end, 0.3);
    expectEvents(eventsOf("bench", spy("IdleSpy", "idle", "<wait-time unit=\"second\">9</wait-time><movement>5</movement>")), {});
    expectEvents(eventsOf("bench",
                     spy("IdleSpy", "idle", "<wait-time unit=\"second\">5</wait-time><movement>5</movement>",
                         "<zones>" + corners("zone", 90, 0, 160, 120) + "</zones>")),
        {});
}

// 1 vanishes in the door at 10.5 s; 2 appears in it at 14 s, and is out after 22 pixels but a second old only at 15 s; 3 walks
// past. Seen as the exit of a place inside of which the camera looks, the words change places.
TEST(SpyScenes, DoorIsEnteredAndLeft)
{
    std::string const zone = "<zones>" + corners("zone", 110, 20, 145, 100) + "</zones>";
    auto const door = [&](char const* name, char const* type, char const* zoneType) {
        return spy("EnterExitSpy", name,
            "<type>" + std::string(type) + "</type><zone-type>" + std::string(zoneType) + "</zone-type>", zone);
    };
    expectEvents(eventsOf("door", door("a", "Both", "Enter") + door("b", "Both", "Exit") + door("c", "Exit", "Enter")),
        {{"a Enter", 10.5, 11.8}, {"b Exit", 10.5, 11.8}, {"a Exit 2", 15.0, 15.4}, {"b Enter 2", 15.0, 15.4},
            {"c Exit 2", 15.0, 15.4}});
}

// Somebody stands in front of the case for 3 s, which is no alarm. The case goes at 27 s while somebody walks by;
// the hole that it leaves is an object on the asset until it has stood still for 10 s and more. At 50 s it is put back, the end
// of the change. At 70 s it goes without a hand near it: at once, and when the hole has been an object for more than the 15 s for
// which an event lives, in a second event.
TEST(SpyScenes, AssetIsTakenAndPutBackAndNotTakenByWhoStandsInFrontOfIt)
{
    std::string const keys = "<sensitivity>0.5</sensitivity>" + corners("region", 62, 44, 100, 82);
    std::vector<Expected> const changes = {{"case", 37.0, 45.0}, {"case", 70.0, 70.3}, {"case", 80.0, 88.0}};
    expectEvents(eventsOf("asset", spy("ObjectTakenSpy", "case", keys)), changes);
    expectEvents(eventsOf("asset", spy("ObjectTakenSpy", "case", keys + "<replace-alarm/>")),
        {changes[0], {"case Replaced 4", 50.0, 50.3}, changes[1], changes[2]});
}

TEST(SpyScenes, ExamplesOfTheHandbookDoWhatTheySay)
{
    expectEvents(eventsOf("yard", exampleOf("LineCrossingSpy")), {{"alarm 1", 9.0, 9.4}, {"alarm 3", 25.0, 25.4}});
    expectEvents(
        eventsOf("yard", exampleOf("PerimeterSpy")), {{"alarm 1", 8.9, 9.3}, {"alarm 2", 15.0, 15.5}, {"alarm 3", 24.9, 25.4}});
    expectEvents(eventsOf("door", exampleOf("EnterExitSpy")), {{"alarm Exit", 10.5, 11.8}, {"alarm Enter 2", 15.0, 15.4}});
    expectEvents(eventsOf("bench", exampleOf("IdleSpy")), {{"alarm 1", 13.0, 13.7}});
    expectEvents(eventsOf("asset", exampleOf("ObjectTakenSpy")),
        {{"alarm", 37.0, 45.0}, {"alarm Replaced 4", 50.0, 50.3}, {"alarm", 70.0, 70.3}, {"alarm", 80.0, 88.0}});
    expectEvents(eventsOf("pass", exampleOf("ActivitySpy")), {{"alarm 2 3", 17.8, 18.1}});
    expectEvents(eventsOf("crowd", exampleOf("CrowdDensitySpy")), {{"alarm 9 10 11 12 13 14", 37.5, 39.2}});
    expectEvents(eventsOf("sprint", exampleOf("SpeedSpy")), {{"alarm 1", 7.7, 8.1}, {"alarm 2", 15.7, 16.1}});
    expectEvents(eventsOf("pass", exampleOf("ObjectSpy")),
        {{"alarm", 13.4, 13.9}, {"alarm", 23.4, 23.9}, {"alarm", 25.0, 25.5}, {"alarm", 35.4, 35.9}});
    expectEvents(eventsOf("pass", exampleOf("ProfileSpy") + exampleOf("OpticalFlowSpy")), {});
}

// Each is in view for 172 pixels at 30 a second, 5.73 s, the first quarter of a second as a sliver of less than 6 pixels. 2 and 3
// begin 1.6 s after each other, so both are there from 17.6 s to 21.73 s. Nobody is recognised, and nobody flags scenes or clips.
TEST(SpyScenes, ActivityCountsAndWatchesWhoPasses)
{
    auto const activity = [](char const* name, char const* keys) { return spy("ActivitySpy", name, keys); };
    expectEvents(eventsOf("pass", activity("delta", "<type>Delta</type>")),
        {{"delta", 0.0, 0.0}, {"delta 1", 6.2, 6.5}, {"delta 1", 11.4, 11.8}, {"delta 2", 16.2, 16.5}, {"delta 2 3", 17.8, 18.1},
            {"delta 2 3", 21.4, 21.8}, {"delta 3", 23.0, 23.4}, {"delta 4", 28.2, 28.5}, {"delta 4", 33.4, 33.8}});
    auto const many = eventsOf("pass", activity("many", "<type>Threshold</type><max-activity>1</max-activity>"));
    expectEvents(many, {{"many 2 3", 17.8, 18.1}});
    ASSERT_EQ(1u, many.size());
    EXPECT_NEAR(21.6, many[0].end, 0.2);
    expectEvents(eventsOf("pass", activity("many", "<type>Threshold</type><max-activity>2</max-activity>")), {});
}

// 60 pixels further than where it was born, at first as a sliver, a walker is after 2 s and a quarter. One is gone when nothing
// of it is left, and an ObjectSpy has waited for 2 s.
TEST(SpyScenes, WhoComesAndWhoHasGoneIsReportedOnce)
{
    std::string const far = "<min-distance>60</min-distance>";
    expectEvents(eventsOf("pass", spy("ActivitySpy", "new", "<type>NewObject</type>" + far)),
        {{"new 1", 8.1, 8.6}, {"new 2 3", 18.1, 18.6}, {"new 2 3", 19.7, 20.2}, {"new 4", 30.1, 30.6}});
    auto dead = eventsOf("pass", spy("ActivitySpy", "dead", "<type>DeadObject</type>" + far));
    for (Found& one : dead) // whether a sliver of who goes is still to be seen does not matter
        one.what = one.what.substr(0, 4);
    expectEvents(dead, {{"dead", 11.4, 11.9}, {"dead", 21.4, 21.9}, {"dead", 23.0, 23.5}, {"dead", 33.4, 33.9}});
    expectEvents(eventsOf("pass", spy("ActivitySpy", "new", "<type>NewObject</type><min-distance>172</min-distance>")), {});
    expectEvents(eventsOf("pass", spy("ObjectSpy", "seen", "<min-valid-time unit=\"second\">6</min-valid-time>")), {});
    expectEvents(eventsOf("pass", spy("ObjectSpy", "car", "", "<classes><class>car</class></classes>")), {});
}

// The lines at columns 64 and 96 are 32 pixels apart, taken as 5 m. At 60 pixels a second that is 0.53 s, 33.75 km/h; at 40 it is
// 0.8 s, 22.5 km/h. A walker is past a line with its whole 12 pixels: 1 past the second after 108 pixels, at 7.8 s; 2 past the
// first one, from the right, after 108 as well, at 15.8 s. 4 meets one line only.
TEST(SpyScenes, SpeedIsTooHighOrJustNot)
{
    auto const limit = [](char const* speed) {
        return spy("SpeedSpy", "speed",
            std::string("<speed-limit>") + speed +
                "</speed-limit><distance>5</distance><unit>metric</unit><first-segment><first x=\"0.4\" y=\"0.1\"/>"
                "<second x=\"0.4\" y=\"0.9\"/></first-segment><second-segment><first x=\"0.6\" y=\"0.1\"/>"
                "<second x=\"0.6\" y=\"0.9\"/></second-segment>");
    };
    expectEvents(eventsOf("sprint", limit("20")), {{"speed 1", 7.7, 8.1}, {"speed 2", 15.7, 16.1}, {"speed 3", 24.6, 25.0}});
    expectEvents(eventsOf("sprint", limit("40")), {});
}

// A walker's box of 12 x 36 is a fifteenth of the region of 81 x 80, and it fills half of its box and more: two are 7 to 13 % of
// it, six 20 to 40. The first six of them stand for only 2 s; of the second six the last is there at 34.0 s, and the first leaves
// at 41.4 s.
TEST(SpyScenes, CrowdIsTooManyForTooLong)
{
    std::string const keys =
        "<wait-time unit=\"second\">5</wait-time><crowd-regions>" + corners("region", 40, 26, 120, 106) + "</crowd-regions>";
    auto const found = eventsOf("crowd", spy("CrowdDensitySpy", "crowd", "<max-density>0.165</max-density>" + keys));
    expectEvents(found, {{"crowd 9 10 11 12 13 14", 37.5, 39.2}});
    ASSERT_EQ(1u, found.size());
    EXPECT_NEAR(42.0, found[0].end, 0.8);
    expectEvents(eventsOf("crowd", spy("CrowdDensitySpy", "crowd", "<max-density>0.5</max-density>" + keys)), {});
}
