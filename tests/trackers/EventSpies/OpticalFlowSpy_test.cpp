#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/OpticalFlowSpy.h"

namespace {

constexpr char const* motion = "4,4,0,0,0,0,0,8";
constexpr char const* entropy = "1,2,3,4,10";

struct FlowRun : SpyRun<OpticalFlowSpy> {
    /// What the frame reports, in order.
    std::vector<std::string> flow(uint32_t flags, char const* motionBins, char const* entropyBins)
    {
        see([&] {
            scene.frame.setFlags(flags);
            scene.frame.setAttribute("ResidualMotion", motionBins);
            scene.frame.setAttribute("ResidualEntropy", entropyBins);
        });
        std::vector<std::string> texts;
        for (Event const& event : events)
            texts.push_back(event.getDescription() +
                rktl::String::fromFormat(
                    " @%d-%d", int(event.getStart().second.toMilliseconds()), int(event.getStop().second.toMilliseconds())));
        return texts;
    }
};

using Texts = std::vector<std::string>;

} // namespace

// Frames come every 200 ms. The first one begins the clip, the third breaks the scene, the fifth ends the clip.
TEST(OpticalFlowSpy, ReportsEachSceneAndTheClip)
{
    FlowRun run;
    EXPECT_EQ(Texts(), run.flow(Frame::sceneBreak, motion, ""));
    EXPECT_EQ(Texts(), run.flow(0, motion, entropy));
    EXPECT_EQ(Texts({"Scene Motion Histogram: 0.25, 0.25, 0, 0, 0, 0, 0, 0.5 @0-400",
                  "Scene Entropy Histogram: 0.05, 0.1, 0.15, 0.2, 0.5 @0-400"}),
        run.flow(Frame::sceneBreak, "0,0,0,0,0,0,0,16", "1,1,1,1,1"));
    EXPECT_EQ(Texts(), run.flow(0, "1,2,3,4,5,6,7", "1,1,1,1,1")) << "7 numbers are none of motion, 5 of entropy still count";
    // The breaking frame belongs to the second scene, this one to no scene but the next, and to the clip:
    // motion 8, 8, 0, 0, 0, 0, 0, 32 and again 2, 0 ..., entropy 1, 2, 3, 4, 10 and three times 1.
    EXPECT_EQ(Texts({"Scene Motion Histogram: 0, 0, 0, 0, 0, 0, 0, 1 @400-800",
                  "Scene Entropy Histogram: 0.2, 0.2, 0.2, 0.2, 0.2 @400-800",
                  "Clip Motion Histogram: 0.2, 0.16, 0, 0, 0, 0, 0, 0.64 @0-800",
                  "Clip Entropy Histogram: 0.114286, 0.142857, 0.171429, 0.2, 0.371429 @0-800"}),
        run.flow(Frame::endOfClip, "2,0,0,0,0,0,0,0", "1,1,1,1,1"));
}

TEST(OpticalFlowSpy, TheNextClipStartsWithItsOwnFirstFrame)
{
    FlowRun run;
    run.flow(Frame::endOfClip, motion, "");
    EXPECT_EQ(Texts(), run.flow(0, "x,nan,inf,0,0,0,0,0", "")) << "words are no numbers";
    auto const texts = run.flow(Frame::endOfClip, motion, "");
    ASSERT_EQ(2u, texts.size());
    EXPECT_EQ("Scene Motion Histogram: 0.25, 0.25, 0, 0, 0, 0, 0, 0.5 @0-400", texts[0]) << "from the end of the clip before";
    EXPECT_EQ("Clip Motion Histogram: 0.25, 0.25, 0, 0, 0, 0, 0, 0.5 @200-400", texts[1]);
}

TEST(OpticalFlowSpy, FormsAreTheBasesAlone)
{
    OpticalFlowSpy spy;
    spy.setName("flow");
    spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>(0, 0, 1, 1))});
    expectBothFormsSurvive(spy);
    rksl::MemIOStream form;
    form << rktl::String("flow") << rktl::UUID() << rktl::String() << rktl::ElapsedTime(300000) << rktl::Integer(0)
         << rktl::Integer(0) << rktl::String("alarm") << rksl::StringMap<rktl::String>();
    EXPECT_EQ(support::toBin(form), support::toBin(spy));
}
