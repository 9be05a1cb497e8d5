#include <gtest/gtest.h>

#include "support/bytes.h"
#include "tracker_stage.h"

#include <atomic>
#include <thread>

using Box = TrackerStage::Box;
using Region = TrackerStage::Region;

namespace {

ObjectTrackerParams withWindow(int64_t milliseconds)
{
    ObjectTrackerParams params;
    params.mResurrectionWindow = rktl::ElapsedTime(milliseconds);
    return params;
}

/// Judges as it is told, and notes what it was asked.
class FakeBackground : public AdaptiveBackground, public VideoProcess {
public:
    bool supports(char const* wanted, rkpl::Plugin** result) override
    {
        return answers<AdaptiveBackground>(this, wanted, result) || VideoProcess::supports(wanted, result);
    }
    void release() override { delete this; }
    bool falseScore(ProcessFrame const& frame, rktl::String const& type, Box const& box, int margin, float& answer) override
    {
        EXPECT_FALSE(frame.isImageSet("Activity Image", 2));
        asked += type + " " + std::to_string(box.x) + "," + std::to_string(box.y) + " " + std::to_string(box.width) + "x" +
            std::to_string(box.height) + " " + std::to_string(margin) + ";";
        answer = score;
        return score >= 0;
    }
    rktl::String getProcessType() const override { return "FakeBackground"; }
    void resetProcess() override { }
    bool onProcessFrame(ProcessFrame&) override { return true; }

    float score = 0.0f; // below 0: no answer
    rktl::String asked;
};

} // namespace

TEST(ObjectTracker, FollowsAnObjectFromBirthToItsEnd)
{
    TrackerStage street;
    int64_t t = 0;
    for (int frame = 0; frame < 5; ++frame, t += 40)
        EXPECT_EQ("1:1", street.step(t, {{{40 + frame, 50, 10, 20}}})) << frame;
    EXPECT_EQ("1:3", street.step(200, {{{45, 50, 10, 20}}})) << "5 matched frames after its birth";
    EXPECT_EQ("1:5", street.step(240, {}));
    EXPECT_EQ("1:3", street.step(280, {{{45, 50, 10, 20}}}));
    EXPECT_EQ("1:5", street.step(1000, {}));
    EXPECT_EQ("1:5", street.step(2000, {})) << "it waits for the whole time to defer";
    EXPECT_EQ("", street.step(2001, {})) << "and by default nothing goes into limbo";
    EXPECT_EQ("2:1", street.step(2040, {{{2, 50, 10, 20}}}));
    EXPECT_EQ("true", street.frame.getObject(2)->getAttribute("Near Edge"));
}

TEST(ObjectTracker, DropsWhatStandsStillForTooLong)
{
    TrackerStage street;
    EXPECT_EQ("1:1", street.step(0, {{{40, 50, 10, 20}}}));
    EXPECT_EQ("1:1", street.step(1000, {{{40, 50, 10, 20}, 0.5f}}));
    EXPECT_EQ("1:1", street.step(11000, {{{40, 50, 10, 20}, 0.49f}}));
    EXPECT_EQ("", street.step(11001, {{{40, 50, 10, 20}, 0.49f}}));
    EXPECT_EQ("", street.step(11040, {{{40, 50, 10, 20}, 0.49f}})) << "its track has ended too, and stillness starts none";
    EXPECT_EQ("2:1", street.step(11080, {{{40, 50, 10, 20}}}));
}

TEST(ObjectTracker, ObeysRequests)
{
    TrackerStage street;
    street.stage.setNextID(7);
    EXPECT_EQ("7:1", street.step(0, {{{40, 50, 10, 20}}}));
    EXPECT_TRUE(street.stage.removeObject(7));
    street.stage.lock(true);
    EXPECT_EQ("7:0", street.step(40, {{{40, 50, 10, 20}}, {{100, 50, 10, 20}}})) << "removed for good; no new ones when locked";
    street.stage.lock(false);
    EXPECT_EQ("7:0 8:1", street.step(80, {{{40, 50, 10, 20}}, {{100, 50, 10, 20}}}));
    EXPECT_EQ(9u, street.stage.getNextID());

    street.prepare(120, {{{40, 50, 10, 20}}});
    street.frame.setFlags(Frame::sceneBreak);
    EXPECT_EQ("9:1", street.run()) << "a scene break forgets all, but ids are not used again";
}

TEST(ObjectTracker, GivesBoxesInPixelsOfTheNativeFrame)
{
    TrackerStage street;
    street.step(0, {{{41, 51, 11, 20}}}, 2.0);
    EXPECT_TRUE(street.frame.getObject(1)->getFirstBox() == Box(21, 26, 6, 10)) << "20.5, 25.5 and 5.5, away from 0";
    TrackerStage blind;
    blind.prepare(0, {{{40, 50, 10, 20}}}).frame.unsetImage("Native Image");
    EXPECT_EQ("failed", blind.run());
    EXPECT_EQ("1:1", blind.step(40, {{{40, 50, 10, 20}}}));
}

TEST(ObjectTracker, KeepsAListForEachKindOfRegion)
{
    TrackerStage street;
    street.prepare(0, {{{40, 50, 10, 20}}, {{40, 50, 10, 20}, 1, 0xff, "Static"}, {{90, 50, 10, 20}, 1, 0xff, "Cars"}});
    street.frame.classifyUntracked("Cars", "VEHICLE");
    EXPECT_EQ("1:1 2:1 3:1", street.run()) << "ids are unique over the lists";
    street.prepare(40, {{{40, 50, 10, 20}}, {{90, 50, 10, 20}, 1, 0xff, "Cars"}});
    EXPECT_EQ("1:1 3:1", street.run()) << "a static one ends at once";
}

TEST(ObjectTracker, ContinuesAnObjectThatWasLost)
{
    // The first one, at 60,50 10x20, is there until 3000, waits until 4100 and is in limbo from 4200 on. The second one
    // comes at bornAt, is looked at again at decideAt, and either is the first one or is not. Limbo lasts 5000.
    struct {
        char const* why;
        Box second;
        uint32_t colour;
        int64_t bornAt, decideAt;
        uint32_t firstId;
        bool continues;
    } const cases[] = {
        {"500 ms old", {70, 50, 10, 20}, 0xff0000, 4300, 4800, 1, true},
        {"too young", {70, 50, 10, 20}, 0xff0000, 4300, 4799, 1, false},
        {"5000 ms old", {79, 50, 10, 20}, 0xff0000, 1000, 6000, 1, true},
        {"too old", {79, 50, 10, 20}, 0xff0000, 1000, 6001, 1, false},
        {"25 pixels away, 15 by 20", {75, 70, 10, 20}, 0xff0000, 4300, 4800, 1, false},
        {"a little less", {75, 69, 10, 20}, 0xff0000, 4300, 4800, 1, true},
        {"another colour", {70, 50, 10, 20}, 0x0000ff, 4300, 4800, 1, false},
        {"as old as the limbo", {70, 50, 10, 20}, 0xff0000, 8500, 9100, 1, true},
        {"older than the limbo", {70, 50, 10, 20}, 0xff0000, 8500, 9101, 1, false},
        {"the lost one has the higher id", {70, 50, 10, 20}, 0xff0000, 4300, 4800, 5, false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        ObjectTrackerParams params = withWindow(5000);
        params.mAdvancedHistograms = 1;
        TrackerStage street(params);
        auto const regions = [&](int64_t t) {
            std::vector<Region> list;
            if (t <= 3000)
                list.push_back({{60, 50, 10, 20}});
            if (t >= c.bornAt)
                list.push_back({c.second, 1.0f, c.colour});
            return list;
        };
        street.stage.setNextID(c.firstId);
        street.step(0, regions(0));
        street.stage.setNextID(c.firstId == 1 ? 2 : 1);
        for (int64_t t = 100; t <= std::max<int64_t>(c.bornAt, 4200); t += 100)
            street.step(t, regions(t));
        uint32_t const second = c.firstId == 1 ? 2 : 1;
        ASSERT_EQ(Object::purged, street.frame.getObject(c.firstId)->getState());
        std::string const after = street.step(c.decideAt, regions(c.decideAt));
        EXPECT_EQ(c.continues, after == "1:4") << after;
        EXPECT_EQ(c.continues, !street.frame.getObject(second));
        if (!c.continues)
            continue;
        Object const* const object = street.frame.getObject(1);
        EXPECT_TRUE(object->isFullTrack() && object->getId() == 1);
        EXPECT_TRUE(object->getFirstBox() == Box(60, 50, 10, 20));
        EXPECT_EQ(c.decideAt, object->age().toMilliseconds());
        std::string const next = street.step(c.decideAt + 100, regions(c.decideAt));
        EXPECT_TRUE(next == "1:1" || next == "1:3") << next; // its record, now under the old id, goes on
        EXPECT_FALSE(street.frame.getObject(1)->isFullTrack());
    }
}

TEST(ObjectTracker, OnlyAnObjectThatLivedLongEnoughWaitsInLimbo)
{
    for (int64_t const age : {2499, 2500}) {
        ObjectTrackerParams params = withWindow(15000);
        params.mDeferTime = rktl::ElapsedTime(0);
        TrackerStage street(params);
        for (int64_t t = 0; t < 2400; t += 100)
            street.step(t, {{{60, 50, 10, 20}}});
        EXPECT_EQ("1:5", street.step(age, {}));
        EXPECT_EQ(age == 2500 ? "1:2" : "", street.step(2600, {}));
        street.stage.allowResurrection(false);
        EXPECT_EQ("", street.step(2640, {})) << "which empties the limbo";
    }
}

TEST(ObjectTracker, RemovesFalseStaticObjects)
{
    ObjectTrackerParams params;
    params.mRemoveFalseObjects = 1;
    params.mMinTrackLength = 1;
    params.mDeferTime = rktl::ElapsedTime(0);
    TrackerStage street(params);
    auto* const background = new FakeBackground;
    street.stage.setProcesses({rkpl::PluginPtr<VideoProcess>(background)});
    Region const parked = {{1, 50, 10, 20}, 1.0f, 0xff0000, "Static"};
    std::vector<unsigned char> pixels(street.width * street.height, 200);
    rk_image const activity = {pixels.data(), street.width, street.height, 1, street.width * street.height};
    auto const judge = [&](int64_t t, float score, std::vector<Region> const& regions) {
        background->score = score;
        background->asked.clear();
        street.prepare(t, regions).frame.setImage("Activity Image", activity, 2);
        std::string const states = street.run();
        Object const* const object = street.frame.getObject(1);
        return states + " " + (object ? object->getAttribute("False Confidence") : "gone");
    };
    Region const over = {{8, 60, 30, 30}};
    EXPECT_EQ("1:1", street.step(0, {parked})) << "without the activity nobody is asked";
    // The box grows by 2 on each side, and is cut at the picture's edge: from -1, the size falls by 1.
    EXPECT_EQ("1:3 0.700000", judge(40, 0.7f, {parked}));
    EXPECT_EQ("Static 0,48 13x24 5;", background->asked);
    EXPECT_EQ("1:3 2:1 0.700000", judge(80, -1.0f, {parked, over})) << "no answer, no change";
    EXPECT_NE("", background->asked) << "a nascent object over it does not count";
    EXPECT_EQ("1:3 2:3 0.700000", judge(120, 1.0f, {parked, over}));
    EXPECT_EQ("1:3 2:5 0.700000", judge(160, 1.0f, {parked})) << "a lost one over it does";
    EXPECT_EQ("", background->asked);
    judge(200, -1.0f, {parked});                           // the one over it goes at the end of this frame
    EXPECT_EQ("1:3 0.730000", judge(240, 1.0f, {parked})); // 0.7 * 0.9 + 0.1
    EXPECT_EQ(200, street.frame.getMultiImage("Activity Image").getFlatGray().getImage()->data[50 * street.width + 5]);
    // 0.73 * 0.9 + 0.1 = 0.757 is above 0.75. A second one with the same box, new and with an average of its own, takes the
    // answer that is known already.
    EXPECT_EQ(" gone", judge(2000, 1.0f, {parked, parked}));
    EXPECT_EQ("Static 0,48 13x24 5;", background->asked) << "asked once for one box";
    unsigned char const* const left = street.frame.getMultiImage("Activity Image").getFlatGray().getImage()->data;
    unsigned int cleared = 0;
    for (unsigned int i = 0; i < street.width * street.height; ++i)
        cleared += left[i] == 0;
    EXPECT_EQ(13u * 24, cleared);
    EXPECT_EQ(0, left[48 * street.width] + left[71 * street.width + 12]);
}

TEST(ObjectTracker, AnswersOtherThreadsWhileFramesRun)
{
    TrackerStage street(withWindow(15000));
    std::atomic<bool> isOver{false};
    std::atomic<size_t> seen{0};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 2; ++reader)
        readers.emplace_back([&] {
            while (!isOver) {
                ObjectMap objects;
                EXPECT_TRUE(street.stage.getObjects(objects));
                for (auto& [id, object] : objects) {
                    seen += object.getTrack().newest().mBox.width == 10;
                    object.insert({0, 0, 9, 9}, {}, object.getTrack().newestTime());
                }
                street.stage.removeObject(999);
                street.stage.lock(false);
                street.stage.getNextID();
            }
        });
    for (int frame = 0; frame < 150 || (seen == 0 && frame < 100000); ++frame) {
        int const x = 20 + frame % 100;
        street.step(frame * 40, {{{x, 50, 10, 20}}, {{120 - frame % 100, 80, 10, 20}}});
        for (auto const& [id, object] : street.frame.getObjects())
            for (auto const& [time, node] : object.getTrack())
                ASSERT_EQ(10, node.mBox.width) << "what readers do to their copies stays there";
    }
    isOver = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_GT(seen, 0u);
}
