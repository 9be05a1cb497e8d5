#include <gtest/gtest.h>

#include "support/tracked.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/EventSpies/EventDetector.h"
#include "trackers/EventSpies/EventDetectorParams.h"

// Without a reader of XML the spy that runs is the one that the binary parameters carry, with all that it was given.
TEST(NullCursor, ParametersRunTheirSpies)
{
    Direction spy("heading", "description", 0, 400, rktl::ElapsedTime(1000), 20);
    spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{0, 0, 0.65f, 1})});
    spy.setClasses({"human"});
    spy.setMaxWidth(0.5f);
    spy.setMinAge(rktl::ElapsedTime(1201));
    spy.setAlarmType("count");
    spy.setMergeEvents(true);
    EventDetectorParams params(rktl::ElapsedTime(0));
    params.getSpyFactories() = {EventSpyFactory(&spy)};
    EventDetector detector;
    ASSERT_TRUE(detector.setParameters(params));

    // 100 pixels each 200 ms: frame 6 is judged and long enough, but too young; frame 7 lies beyond the zone, without which
    // it alarms.
    for (bool const zoned : {true, false}) {
        if (!zoned)
            spy.setZones({});
        EXPECT_FALSE(detector.setSpy(&spy)); // the answer says that no XML was read
        TrackedScene scene;
        rksl::List<Event> events;
        for (int i = 0; i < 8; ++i) {
            scene.at(200 * i);
            scene.put(3, {i * 100, 500, 0, 0});
            EXPECT_TRUE(detector.processFrame(scene.frame));
            EXPECT_TRUE(detector.getEvents(events));
        }
        ASSERT_EQ(zoned ? 0u : 1u, events.size());
        for (Event const& event : events)
            EXPECT_EQ(rktl::ElapsedTime(1400), event.getStart().second);
    }
}

TEST(NullCursor, XmlOfSpiesIsReadAsNone)
{
    Direction spy("a", "", 45, 7, rktl::ElapsedTime(1000), 20);
    rktl::String const before = spy.toXML();
    EXPECT_FALSE(spy.fromXML(before.c_str()));
    EXPECT_EQ(before, spy.toXML());

    EventDetectorParams params(rktl::ElapsedTime(1));
    EXPECT_TRUE(params.xmlUnserialize(before)); // no walk that never ends
    EXPECT_TRUE(params.getSpyFactories().empty());
    EXPECT_EQ(rktl::ElapsedTime(200), params.getProcessingInterval());
}
