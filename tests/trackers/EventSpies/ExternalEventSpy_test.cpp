#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/EventDetector.h"
#include "trackers/EventSpies/ExternalEventSpy.h"

TEST(ExternalEventSpy, HoldsEventsThatComeFromElsewhere)
{
    TrackedScene scene;
    ExternalEventSpy spy("door", "");
    Event event({scene.timeAt(0), rktl::ElapsedTime()}, {scene.timeAt(0), rktl::ElapsedTime()}, spy.getAlarmType(), 0, 50);
    EXPECT_NE(0u, spy.addEvent(event, nullptr, false));
    spy.reset();
    rksl::List<Event> events;
    spy.getEvents(events);
    ASSERT_EQ(1u, events.size()) << "a reset leaves them";
    EXPECT_EQ("external", events.front().getType());
    EXPECT_EQ("ExternalEventSpy", events.front().getSpyType());
    EXPECT_FALSE(EventDetector().addSpy(&spy)) << "there is nothing in it that sees frames";
}

TEST(ExternalEventSpy, FormsKeepItExternal)
{
    ExternalEventSpy spy("door", "x");
    EXPECT_EQ(
        "<ExternalEventSpy><EventSpy><name>door</name><desc>x</desc><max-age unit=\"minute\">5</max-age><priority>0</priority>"
        "<alarm-type>external</alarm-type></EventSpy></ExternalEventSpy>",
        spy.toXML());
    expectBothFormsSurvive(spy);
}
