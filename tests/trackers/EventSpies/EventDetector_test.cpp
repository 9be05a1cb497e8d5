#include <gtest/gtest.h>

#include "support/probe_spy.h"
#include "support/tracked.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/EventSpies/EventDetector.h"
#include "trackers/EventSpies/EventDetectorParams.h"

namespace {

using Positions = std::vector<int64_t>;

/// A detector with one probe.
struct EventDetectorTest : testing::Test {
    EventDetectorTest()
    {
        detector.enable(true);
        EXPECT_FALSE(detector.addSpy(&probe)); // no factory knows it: the plain clone runs
    }

    bool see(int64_t position, uint32_t flags = 0)
    {
        scene.at(position).setFlags(flags);
        return detector.processFrame(scene.frame);
    }
    rksl::List<Event> drain()
    {
        rksl::List<Event> events;
        EXPECT_TRUE(detector.getEvents(events));
        return events;
    }
    std::string names()
    {
        std::list<EventSpyFactory> spies;
        EXPECT_TRUE(detector.getSpies(spies));
        std::string names;
        for (EventSpyFactory const& spy : spies)
            names += spy.getSpy()->getName() + " ";
        return names;
    }

    TrackedScene scene;
    ProbeSpy probe;
    ProbeSpy::Seen& seen = *probe.seen;
    EventDetector detector;
};

/// Parameters as a sender may have written them.
struct ForeignParams : ProcessParams {
    rksl::MemIOStream binSerialize() const override { return binary; }
    rktl::String xmlSerialize() const override { return xml; }
    rksl::MemIOStream binary;
    rktl::String xml;
};

} // namespace

TEST_F(EventDetectorTest, SpiesSeeFramesAnIntervalApart)
{
    for (int64_t position = 0; position <= 500; position += 100)
        EXPECT_TRUE(see(position));
    EXPECT_EQ((Positions{0, 200, 400}), seen.positions);
    seen.positions.clear();
    for (int64_t position : {150, 349, 350}) // back by a jump, and on from there
        see(position);
    EXPECT_EQ((Positions{150, 350}), seen.positions);
    seen.positions.clear();
    see(400, Frame::endOfClip);
    for (int64_t position : {599, 600})
        see(position);
    EXPECT_EQ((Positions{400, 600}), seen.positions);
    EXPECT_EQ(1u, seen.resets); // the frame size, once
}

TEST_F(EventDetectorTest, FlagsOfSkippedFramesReachTheNextProcessedOne)
{
    see(0, 0x400);
    see(50, 0x10304);
    see(100, 0x1002);
    see(200, 0x402);
    EXPECT_EQ(0x402u, scene.frame.getFlags());
    see(400);
    EXPECT_EQ((std::vector<uint32_t>{0x400, 0x1702, 0}), seen.flags);
}

// The rule raises one event, to which each processed frame adds an object and itself.
TEST_F(EventDetectorTest, DrainGivesEachEventOnceForItsChanges)
{
    probe.setMergeEvents(true);
    detector.addSpy(&probe);
    seen.rule = [](ProbeSpy& spy, ProcessFrame const& frame) {
        auto const id = static_cast<uint32_t>(frame.getPosition().toMilliseconds() / 200 + 1);
        spy.addEventObject(id, frame, -1.0, nullptr, nullptr);
    };
    EXPECT_TRUE(drain().empty());
    for (int64_t position : {0, 100, 200})
        see(position);
    rksl::List<Event> const first = drain();
    ASSERT_EQ(1u, first.size());
    EXPECT_EQ("1,2", first.front().objectsString(probe.defaultOrigin()));
    ASSERT_EQ(2u, first.front().getFrames().size());
    EXPECT_EQ(rktl::ElapsedTime(200), first.front().getFrames().back().getPosition());
    EXPECT_TRUE(drain().empty());

    see(400);
    detector.resetProcess(); // gathered events stay
    rksl::List<Event> const second = drain();
    ASSERT_EQ(1u, second.size());
    EXPECT_EQ(first.front().getUID(), second.front().getUID());
    EXPECT_EQ("1,2,3", second.front().objectsString(probe.defaultOrigin()));
    EXPECT_EQ(1u, second.front().getFrames().size());

    see(600); // the reset forgot the spy's own
    EXPECT_NE(first.front().getUID(), drain().front().getUID());
}

TEST_F(EventDetectorTest, EventsThatNobodyDrainsAreForgotten)
{
    for (int64_t const later : {300000, 300001}) {
        seen.rule = [](ProbeSpy& spy, ProcessFrame const& frame) { spy.addEventFrame(0, frame, 1.0, nullptr, nullptr); };
        see(0);
        seen.rule = nullptr;
        see(later);
        EXPECT_EQ(later == 300000 ? 1u : 0u, drain().size());
    }
}

TEST_F(EventDetectorTest, SpyThatThrowsFailsTheFrameAndResetsTheSpies)
{
    seen.rule = [](ProbeSpy&, ProcessFrame const&) { throw rktl::Exception("broken rule"); };
    EXPECT_FALSE(see(0));
    EXPECT_EQ(2u, seen.resets);
    seen.rule = nullptr;
    EXPECT_TRUE(see(10)); // the interval starts anew
    EXPECT_EQ((Positions{0, 10}), seen.positions);
}

TEST_F(EventDetectorTest, ParametersReplaceAllSpiesAndTheInterval)
{
    see(0);
    EventDetectorParams params(rktl::ElapsedTime(50));
    Direction const spy("b", "", 45, 0, rktl::ElapsedTime(2000), 15);
    params.getSpyFactories() = {EventSpyFactory(&spy), EventSpyFactory()};
    EXPECT_ANY_THROW(detector.setParameters(params)); // a factory without a spy has no form
    EXPECT_EQ("probe ", names());
    params.getSpyFactories().pop_back();
    EXPECT_TRUE(detector.setParameters(params));
    EXPECT_EQ("b ", names());
    detector.addSpy(&probe);
    seen.positions.clear();
    for (int64_t position : {1, 50, 51})
        see(position);
    EXPECT_EQ((Positions{1, 51}), seen.positions);
}

TEST_F(EventDetectorTest, XmlServesWhereTheBinaryPartFails)
{
    ForeignParams params;
    params.xml = "<DirectionSpy><EventSpy><name>x</name></EventSpy></DirectionSpy><UnknownSpy><a/></UnknownSpy><DirectionSpy/>";
    EXPECT_TRUE(detector.setParameters(params));
    EXPECT_EQ("x ", names());
    params.binary << rktl::Integer(1);
    params.xml = "<DirectionSpy><EventSpy><name>y</name></EventSpy></DirectionSpy>";
    EXPECT_TRUE(detector.setParameters(params));
    EXPECT_EQ("y ", names());
    params.xml = "<DirectionSpy>";
    EXPECT_FALSE(detector.setParameters(params));
    EXPECT_EQ("y ", names());
}

TEST(EventDetectorParams, FormsCarrySpiesAndInterval)
{
    Direction const spy("a", "", 45, 0, rktl::ElapsedTime(2000), 15);
    EventDetectorParams params(rktl::ElapsedTime(30));
    params.getSpyFactories() = {EventSpyFactory(&spy), EventSpyFactory(&spy)};
    EXPECT_TRUE(params.renameSpy("a", "b"));
    EXPECT_EQ("<processing-interval unit=\"millisecond\">30</processing-interval>" +
            rktl::String(params.getSpyFactories().front().toXML()) + "\n" + spy.toXML() + "\n",
        params.xmlSerialize());

    for (bool const binary : {false, true}) {
        EventDetectorParams read(rktl::ElapsedTime(1));
        EXPECT_TRUE(binary ? read.binUnserialize(params.binSerialize()) : read.xmlUnserialize(params.xmlSerialize()));
        EXPECT_EQ(params.xmlSerialize(), read.xmlSerialize());
    }
}
