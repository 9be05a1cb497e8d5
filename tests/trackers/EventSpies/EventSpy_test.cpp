#include <gtest/gtest.h>

#include "support/bytes.h"
#include "support/probe_spy.h"
#include "support/tracked.h"

#include <limits>

namespace {

struct Listener : EventSpy::Listener {
    void onEvent(Event const& event) override { heard.push_back(event); }
    std::vector<Event> heard;
};

struct EventSpyTest : testing::Test {
    EventSpyTest()
    {
        EventSpy::mNextUID = 0;
        spy.setListener(&listener);
    }

    uint32_t alarm(uint32_t object, double confidence = -1.0)
    {
        return spy.addEventObject(object, scene.frame, confidence, nullptr, nullptr);
    }
    rksl::List<Event> collect()
    {
        rksl::List<Event> events;
        EXPECT_TRUE(spy.getEvents(events));
        return events;
    }
    rktl::String objects(Event const& event) { return event.objectsString(spy.defaultOrigin()); }

    TrackedScene scene;
    Listener listener;
    ProbeSpy spy;
};

uint16_t const noPercent = 0;

} // namespace

TEST_F(EventSpyTest, EachObjectHasAnEventOfItsOwnThatGoesOn)
{
    scene.at(100);
    EXPECT_EQ(1u, alarm(5));
    EXPECT_EQ(2u, alarm(6));
    EXPECT_EQ(2u, collect().size());
    EXPECT_TRUE(collect().empty());

    scene.at(300);
    EXPECT_EQ(1u, alarm(5, 0.25)); // does not lower the 100 percent
    rksl::List<Event> const events = collect();
    ASSERT_EQ(1u, events.size());
    Event const& event = events.front();
    EXPECT_EQ("5", objects(event));
    EXPECT_EQ(100, event.getConfidence());
    EXPECT_EQ(rktl::ElapsedTime(100), event.getStart().second);
    EXPECT_EQ(rktl::ElapsedTime(300), event.getStop().second);
    EXPECT_TRUE(event.getFrames().empty()); // that of the first alarm went with the first report
}

TEST_F(EventSpyTest, MergedEventGathersObjectsAndAFrameForEachNewOne)
{
    spy.setMergeEvents(true);
    scene.frame.setOrigin(spy.defaultOrigin()); // frames are the same by time and origin
    EXPECT_EQ(1u, alarm(5));
    EXPECT_EQ(1u, alarm(6)); // the same frame once
    scene.at(200);
    EXPECT_EQ(1u, alarm(5)); // a listed object brings no frame
    EXPECT_EQ(1u, alarm(4));
    rksl::List<Event> const events = collect();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ("4,5,6", objects(events.front()));
    EXPECT_EQ(2u, events.front().getFrames().size());

    spy.setName("renamed"); // objects are listed by the name of their day
    EXPECT_EQ(1u, alarm(5));
    EXPECT_EQ(1u, alarm(9));
    EXPECT_EQ("5,9", collect().front().objectsString(spy.defaultOrigin()));
    spy.setName("probe");
    EXPECT_EQ(1u, alarm(9));
    EXPECT_EQ("4,5,6,9", objects(collect().front()));
}

TEST_F(EventSpyTest, PercentOfAConfidence)
{
    scene.put(5, {0, 0, 9, 9}).setClassConfidence("human", 0.4);
    scene.put(5, {0, 0, 9, 9}).setClassConfidence("vehicle", 0.625);
    scene.put(6, {0, 0, 9, 9}).setClassConfidence("human", 0.0);
    EXPECT_EQ(100, (alarm(5), listener.heard.back().getConfidence())); // no classes
    spy.setClasses({"vehicle", "human", "animal"});
    struct {
        uint32_t object;
        double confidence;
        uint16_t percent;
    } const cases[] = {
        {5, -1.0, 63},
        {6, -1.0, 0},
        {77, -1.0, 100},
        {5, 0.504, 50},
        {5, 0.505, 51},
        {5, -0.5, noPercent},
        {5, 655.35, 65535},
        {5, 700.0, 65535},
        {5, std::numeric_limits<double>::quiet_NaN(), noPercent},
    };
    for (auto const& c : cases) {
        spy.reset();
        alarm(c.object, c.confidence);
        EXPECT_EQ(c.percent, listener.heard.back().getConfidence()) << c.object << " " << c.confidence;
    }
}

TEST_F(EventSpyTest, AddedEventIsNumberedByTheSpy)
{
    Event event;
    EXPECT_EQ(1u, spy.addEvent(event, &scene.frame, false));

    // A known uid extends: the higher confidence stays, the type is the newer one; "count" takes no frame.
    event.setUID(1);
    event.setConfidence(40);
    EXPECT_EQ(1u, spy.addEvent(event, nullptr, false));
    EXPECT_EQ(1u, collect().size());
    event.setConfidence(30);
    event.setType("count");
    EXPECT_EQ(1u, spy.addEvent(event, &scene.frame, false));
    EXPECT_EQ(40, listener.heard.back().getConfidence());
    EXPECT_TRUE(listener.heard.back().getFrames().empty());
    EXPECT_EQ(1u, collect().size());

    event.setUID(50);
    EXPECT_EQ(2u, spy.addEvent(event, nullptr, false));
    EXPECT_EQ(50u, spy.addEvent(event, nullptr, true));
    EXPECT_EQ(3u, ProbeSpy().addEventFrame(0, scene.frame, 1.0, nullptr, nullptr)); // numbers are the process's
}

TEST_F(EventSpyTest, ForgottenEventEndsTheLinkOfItsObject)
{
    spy.setMaxAge(rktl::ElapsedTime(60000));
    spy.spy(scene.at(0)); // the first frame resets
    EXPECT_EQ(1u, alarm(5));
    EXPECT_EQ(2u, alarm(6));
    EXPECT_EQ(2u, collect().size());
    scene.at(1000);
    EXPECT_EQ(2u, alarm(6)); // not collected any more
    spy.spy(scene.at(15000));
    EXPECT_EQ(1u, alarm(5)); // 15 s old: still there
    EXPECT_EQ(2u, collect().size());
    spy.spy(scene.at(30001));
    EXPECT_EQ(3u, alarm(5));
    EXPECT_EQ(4u, alarm(6));
    spy.spy(scene.at(90001)); // nobody collects: the spy's own age
    EXPECT_EQ(3u, alarm(5));
    spy.spy(scene.at(150002));
    EXPECT_EQ(5u, alarm(5));
}

TEST_F(EventSpyTest, NewFrameSizeLosesAllStateAndRebuildsZonesFirst)
{
    using Zone = rkml::Polygon2D<float>;
    spy.setZones({Zone({{0, 0}, {1, 0}, {0.5f, 0.5f}}), Zone({{0.4f, 0.6f}, {1.5f, 0}, {0.5f, 9}})});
    spy.setMaxWidth(0.5f);
    spy.setMaxHeight(1e10f);
    std::vector<rkml::Polygon2D<int>> seen;
    spy.seen->rule = [&](ProbeSpy& probe, ProcessFrame const&) {
        seen.assign(probe.getPixelZones().begin(), probe.getPixelZones().end());
    };
    scene.resize(641, 480);
    spy.spy(scene.frame);
    ASSERT_EQ(2u, seen.size());
    using Points = std::vector<rkml::Point2D<int>>;
    EXPECT_EQ((Points{{0, 0}, {641, 0}, {321, 240}}), seen[0].points());
    EXPECT_EQ((Points{{0, 1}, {2, 0}, {1, 9}}), seen[1].points()); // one vertex beyond 1: all are pixels
    EXPECT_EQ(321, spy.getMaxWidthPixels());
    EXPECT_EQ(std::numeric_limits<int32_t>::max(), spy.getMaxHeightPixels());

    EXPECT_EQ(1u, alarm(5));
    spy.spy(scene.frame);
    spy.reserveFrameSize(641, 480);
    EXPECT_EQ(1u, spy.seen->resets);
    EXPECT_EQ(1u, alarm(5));
    scene.resize(0, 480);
    spy.spy(scene.frame);
    EXPECT_EQ(2u, spy.seen->resets);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(321, spy.getMaxWidthPixels());
    EXPECT_TRUE(collect().empty());
    EXPECT_EQ(2u, alarm(5));
}

TEST_F(EventSpyTest, XmlNamesEachKeyAndTheOptionalOnesWhenSet)
{
    spy.setDescription("a<b");
    spy.setMergeEvents(true);
    spy.setAlarmType("count");
    spy.setZones({rkml::Polygon2D<float>({{0.5f, 0.25f}, {1, 0}})});
    spy.setClasses({"human", "vehicle"});
    spy.setMaxWidth(0.25f);
    spy.setMinDistance(4294967295u);
    spy.setAlarmBlobs(true);
    spy.setAttribute("k", "v");
    rktl::UUID guid;
    guid.fromString("00112233-4455-6677-8899-aabbccddeeff");
    spy.setGuid(guid);
    rktl::String const xml = spy.toXML("e");
    EXPECT_EQ(0u, xml.find("<e guid=\"00112233-4455-6677-8899-aabbccddeeff\"><name>probe</name><desc>a&lt;b</desc>"));
    EXPECT_NE(std::string::npos,
        xml.find("<priority>0</priority><merge-events/><alarm-type>count</alarm-type><zones><zone>"
                 "<vertex x=\"0.5\" y=\"0.25\" /><vertex x=\"1\" y=\"0\" /></zone></zones>"
                 "<classes><class>human</class><class>vehicle</class></classes><max-width>0.25</max-width>"));
    EXPECT_NE(std::string::npos, xml.find("<min-distance>4294967295</min-distance><alarm-blobs>true</alarm-blobs><attributes"));

    ProbeSpy read;
    ASSERT_TRUE(read.fromXML(xml.c_str()));
    EXPECT_EQ(xml, read.toXML("e"));
    ProbeSpy carried;
    support::fromBin(carried, support::toBin(spy));
    EXPECT_EQ(xml, carried.toXML("e"));
    support::expectEveryPrefixThrows<ProbeSpy>(support::toBin(spy));
}

TEST_F(EventSpyTest, XmlThatIsReadReplacesWhatItMayOmit)
{
    spy.setAlarmType("count");
    spy.setAlarmBlobs(true);
    spy.setAttribute("k", "v");
    alarm(5);
    ASSERT_TRUE(spy.fromXML("<e guid=\"none\"><merge-events>false</merge-events><min-age unit=\"second\">2</min-age><zones>"
                            "<zone>text</zone><zone><vertex x=\"0\"/><vertex x=\"1\" y=\"0\"/></zone><other/><zone/></zones>"
                            "<classes><class>human</class><kind>x</kind></classes><max-height>0.5</max-height></e>"));
    EXPECT_TRUE(spy.getMergeEvents()); // by its presence
    EXPECT_EQ("alarm", spy.getAlarmType());
    EXPECT_EQ(1.0f, spy.getMaxWidth());
    EXPECT_EQ(0.5f, spy.getMaxHeight());
    EXPECT_FALSE(spy.getAlarmBlobs() || spy.getGuid().isValid());
    EXPECT_TRUE(spy.getAttributes().empty());
    EXPECT_EQ(rksl::List<rktl::String>{"human"}, spy.getClasses());
    EXPECT_EQ(3u, spy.getZones().size());
    EXPECT_TRUE(collect().empty()); // the cache is cleared
}
