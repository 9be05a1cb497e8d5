#include <gtest/gtest.h>

#include "BaseClasses/ProcessFrame.h"
#include "BaseClasses/VideoProcess.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_Logger.h"
#include "plugin/rkgpu_Exception.h"

#include <functional>

namespace {

using rktl::String;

/// Keeps the lines instead of writing them.
struct Lines : rktl::Logger {
    String text;
    Lines()
        : Logger("")
    {
    }
    String format(rktl::LogType const& type, String const& line) override
    {
        text += toString(type) + " " + line + "\n";
        return {};
    }
    bool output(rktl::LogType const&, String const&) override { return true; }
};

struct Stage : VideoProcess {
    String calls;
    bool accepts = true;
    std::function<bool()> work = [] { return true; };

    String getProcessType() const override { return "Stage"; }
    void resetProcess() override { calls += "reset "; }
    void onFrameResize(unsigned int width, unsigned int height, double scale) override
    {
        calls += String::fromFormat("size %ux%u %.1f ", width, height, scale);
    }
    bool onProcessFrame(ProcessFrame&) override
    {
        calls += "frame ";
        return work();
    }
    void onEnable(bool enabled) override { calls += enabled ? "on " : "off "; }
    bool onSetParameters(ProcessParams const&) override { return accepts; }

    String take() { return std::exchange(calls, String()); }
};

TEST(VideoProcess, ParametersEnableResizeAndName)
{
    Stage stage;
    ProcessFrame frame;
    EXPECT_TRUE(stage.processFrame(frame)); // disabled
    EXPECT_EQ("", stage.take());
    ProcessParams params = stage.getDefaultParameters();
    params.setName("mine");
    stage.accepts = false;
    EXPECT_FALSE(stage.setParameters(params));
    EXPECT_EQ("", stage.take() + stage.getName());
    stage.accepts = true;
    EXPECT_TRUE(stage.setParameters(params));
    EXPECT_EQ("size 0x0 1.0 on ", stage.take());
    EXPECT_EQ("mine", stage.getName());
    EXPECT_TRUE(stage.setParameters(params));
    EXPECT_EQ("size 0x0 1.0 ", stage.take());
    params.setEnabled(false);
    EXPECT_TRUE(stage.setParameters(params));
    EXPECT_EQ("size 0x0 1.0 off ", stage.take());
}

TEST(VideoProcess, TellsTheStageOfEachNewSizeOrScaleOnce)
{
    Stage stage;
    stage.enable(true);
    stage.take();
    ProcessFrame frame;
    frame.setResolution({640, 480});
    stage.processFrame(frame);
    stage.processFrame(frame);
    frame.setScale(0.5);
    stage.processFrame(frame);
    frame.setResolution({640, 360});
    stage.processFrame(frame);
    EXPECT_EQ("size 640x480 1.0 frame frame size 640x480 0.5 frame size 640x360 0.5 frame ", stage.take());
    stage.setParameters(stage.getDefaultParameters());
    EXPECT_EQ("size 640x360 0.5 ", stage.take()); // what depends on the size is made again
}

TEST(VideoProcess, AFailureIsLoggedAndTheNextFrameGoesOn)
{
    Lines lines;
    Stage stage;
    stage.setParameters(stage.getDefaultParameters());
    stage.setLogger(&lines);
    stage.take();
    ProcessFrame frame;
    frame.setTimePosition(rktl::TimeStamp(), rktl::ElapsedTime(86400000 + 3723004)); // a day, 1:02:03.004
    struct {
        std::function<bool()> work;
        char const* calls;
        char const* line;
    } const cases[] = {
        {[] { return false; }, "frame ", "ERR Stage: Couldn't process frame at 01:02:03.004.\n"},
        {[]() -> bool { throw rktl::Exception("100%s"); }, "frame reset ",
            "ERR Stage: Stage - Caught Exception (resetting process): 100%s\n"},
        {[]() -> bool { throw 1; }, "frame reset ", "ERR Stage: Stage - Caught Unknown Exception (resetting process).\n"},
    };
    for (auto const& c : cases) {
        stage.work = c.work;
        EXPECT_FALSE(stage.processFrame(frame));
        EXPECT_EQ(c.calls, stage.take());
        EXPECT_EQ(c.line, std::exchange(lines.text, String()));
    }
    stage.work = []() -> bool { throw rkgpu::Exception("lost"); };
    EXPECT_THROW(stage.processFrame(frame), rkgpu::Exception);
    EXPECT_EQ("frame ", stage.take());
    stage.work = [] { return true; };
    EXPECT_TRUE(stage.processFrame(frame));
}

} // namespace
