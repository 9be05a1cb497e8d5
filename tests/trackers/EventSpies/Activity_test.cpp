#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/Activity.h"

namespace {

/// Frames of 1000 x 1000; no age is asked for.
struct ActivityRun : SpyRun<Activity> {
    explicit ActivityRun(Activity::Type type, unsigned int maxActivity = 1, unsigned int minDistance = 0)
        : SpyRun("activity", "", type, maxActivity, minDistance)
    {
        spy.setMinAge(rktl::ElapsedTime());
    }

    /// As many objects as each digit says, one frame each.
    std::string counts(std::string const& digits)
    {
        std::string alarms;
        for (char const digit : digits)
            alarms += see([&] {
                scene.frame.getObjects().clear();
                for (int id = 1; id <= digit - '0'; ++id)
                    scene.put(uint32_t(id), {id * 50, 100, 20, 20});
            });
        return alarms;
    }
};

std::string objectsOf(Event const& event)
{
    return event.objectsString(rktl::url(event.getOrigin()));
}

} // namespace

TEST(Activity, DeltaReportsEachChangedCount)
{
    ActivityRun run(Activity::delta);
    EXPECT_EQ("A.AA.AA", run.counts("1120012"));
    EXPECT_EQ("2", run.events.front().getAttribute("object-count"));
    EXPECT_EQ("1,2", objectsOf(run.events.front()));
    EXPECT_EQ("A.", ActivityRun(Activity::delta).counts("00")) << "the first frame is always a change";
}

TEST(Activity, ThresholdIsOneEventAsLongAsThereAreTooMany)
{
    ActivityRun run(Activity::threshold, 1);
    EXPECT_EQ(".A", run.counts("12")) << "a count equal to the limit is not too many";
    uint32_t const uid = run.events.front().getUID();
    EXPECT_EQ("A", run.counts("3"));
    EXPECT_EQ(uid, run.events.front().getUID());
    EXPECT_EQ("3", run.events.front().getAttribute("object-count"));
    EXPECT_EQ(".A", run.counts("12"));
    EXPECT_NE(uid, run.events.front().getUID());
}

// Each case changes the second of two objects; the count is then 1, or still 2.
TEST(Activity, CountsWhatIsTrackedInAZoneOfAClassAndNotTooLarge)
{
    struct {
        char const* why;
        std::function<void(Activity&, Object&)> change;
        char const* count;
    } const cases[] = {
        {"purged", [](auto&, Object& object) { object.setState(Object::purged); }, "1"},
        {"lost for now", [](auto&, Object& object) { object.setState(Object::lost); }, "2"},
        {"without a path", [](auto&, Object& object) { object = Object(), object.setState(Object::tracked); }, "1"},
        {"of no such class", [](Activity& spy, Object& object) { spy.setClasses({rktl::String("bus")}), object.setClasses({}); },
            "1"},
        {"as wide as allowed", [](Activity& spy, Object&) { spy.setMaxWidth(0.021f); }, "2"},
        {"too wide", [](Activity& spy, Object&) { spy.setMaxWidth(0.02f); }, "1"},
        {"its centre on the edge of the zone",
            [](Activity& spy, Object&) { spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>(0, 0, 210, 900))}); },
            "2"},
        {"its centre outside",
            [](Activity& spy, Object&) { spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>(0, 0, 209, 900))}); },
            "1"},
    };
    for (auto const& c : cases) {
        ActivityRun run(Activity::delta);
        run.see([&] {
            run.scene.put(1, {10, 100, 20, 20}).setClasses({rktl::String("bus")});
            Object& other = run.scene.put(2, {200, 100, 21, 21});
            other.setClasses({rktl::String("car")});
            c.change(run.spy, other);
        });
        ASSERT_EQ(1u, run.events.size()) << c.why;
        EXPECT_EQ(c.count, run.events.front().getAttribute("object-count")) << c.why;
    }
}

TEST(Activity, NewObjectHasComeFurtherAndIsOldEnough)
{
    // (30, 40) is 50 away, (30, 41) 50.8 and rounds to 51; the third node is the first that can count.
    EXPECT_EQ("...", ActivityRun(Activity::newObject, 0, 50).along({{0, 0, 20, 20}, {15, 20, 20, 20}, {30, 40, 20, 20}}));
    EXPECT_EQ("..A", ActivityRun(Activity::newObject, 0, 50).along({{0, 0, 20, 20}, {30, 41, 20, 20}, {30, 41, 20, 20}}));
    EXPECT_EQ("...", ActivityRun(Activity::newObject, 0, 51).along({{0, 0, 20, 20}, {30, 41, 20, 20}, {30, 41, 20, 20}}));
    ActivityRun old(Activity::newObject, 0, 0);
    old.spy.setMinAge(rktl::ElapsedTime(600));
    EXPECT_EQ("...AA", old.along({{0, 0, 20, 20}, {9, 0, 20, 20}, {9, 0, 20, 20}, {9, 0, 20, 20}, {9, 0, 20, 20}}));
}

// Objects 1 and 2 qualify from frame 2 on, object 3 never moves; 1 goes back to where it was born in frame 4.
TEST(Activity, DeadObjectIsReportedWithTheLastFrameInWhichItQualified)
{
    ActivityRun run(Activity::deadObject, 0, 50);
    std::string alarms;
    for (int i = 0; i < 5; ++i)
        alarms += run.see([&] {
            run.scene.put(1, {i == 4 ? 0 : i * 40, 0, 20, 20});
            run.scene.put(2, {i * 40, 200, 20, 20});
            run.scene.put(3, {0, 400, 20, 20});
        });
    EXPECT_EQ(".....", alarms);
    EXPECT_EQ('A', run.see([&] { run.scene.frame.getObjects().clear(); }));
    ASSERT_EQ(2u, run.events.size());
    Event const& first = run.events.front();
    Event const& second = run.events.back();
    EXPECT_EQ("1", objectsOf(first));
    EXPECT_EQ(600, first.getStart().second.toMilliseconds());
    EXPECT_EQ("2", objectsOf(second));
    EXPECT_EQ(800, second.getStart().second.toMilliseconds());
    EXPECT_EQ('.', run.see([] {})) << "each once";
}

TEST(Activity, TypesAndForms)
{
    Activity spy("a", "b", Activity::threshold, 7, 30);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ(
        "</EventSpy><type>Threshold</type><max-activity>7</max-activity></ActivitySpy>", xml.substr(xml.find("</EventSpy>")));
    expectBothFormsSurvive(spy);
    rksl::MemIOStream tail;
    tail << rktl::Integer(3) << rktl::Integer(7);
    expectBinaryTail(spy, tail);
}
