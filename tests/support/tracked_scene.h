#pragma once

#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "application/SimpleTracker.h"
#include "misc/rktl_Logger.h"
#include "support/virtual_clock.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

/// A pipeline that is shown drawn pictures at moments of the virtual clock, and all that it logs. The empty scene is of one
/// value; learn() teaches it so that any pixel that is far from that value counts as foreground, and no other does.
class TrackedScene {
public:
    static constexpr unsigned char empty = 100;

    struct Rect {
        uint32_t x, y, width, height;
    };

    explicit TrackedScene(SimpleTracker::Params const& params, uint32_t columns = 64, uint32_t rows = 48)
        : width(columns)
        , height(rows)
        , tracker(&mLogger, 0, false)
        , mPixels(size_t(columns) * rows, empty)
    {
        EXPECT_TRUE(mLogger.start());
        EXPECT_TRUE(tracker.setParameters(params)) << tracker.getLastError();
        tracker.requestImages({"Background Image", "Activity Image", "Peripheral Image", "Foreground Image", "Exclusion Mask"});
    }

    static SimpleTracker::Params withMode(int32_t mode)
    {
        SimpleTracker::Params params;
        params.mode = mode;
        params.minWidth = 4;
        params.minHeight = 4;
        return params;
    }

    void clear() { std::fill(mPixels.begin(), mPixels.end(), empty); }
    void paint(Rect const& box, unsigned char value)
    {
        for (uint32_t y = box.y; y < box.y + box.height; ++y)
            std::fill_n(mPixels.begin() + y * width + box.x, box.width, value);
    }
    /// The first pixels in reading order.
    void paintFirst(size_t pixels, unsigned char value) { std::fill_n(mPixels.begin(), pixels, value); }

    /// One frame at that stream position in milliseconds; the clocks stand there too.
    bool show(uint32_t position)
    {
        beginFrame(position);
        frame.setImage("Native Image", rk_image{mPixels.data(), width, height, 1, width * height}, rkil::MultiImage::flatGray);
        return tracker.process(frame, false, events);
    }

    /// The same in colour; every pixel is blue, green, red with luma as the fourth byte.
    bool showColour(uint32_t position, std::vector<unsigned char> const& bgry)
    {
        std::vector<unsigned char> bytes;
        for (size_t i = 0; i < mPixels.size(); ++i)
            bytes.insert(bytes.end(), bgry.begin(), bgry.end());
        beginFrame(position);
        frame.setBGRY("Native Image", rk_image{bytes.data(), width, height, 4, width * height * 4});
        return tracker.process(frame, true, events);
    }

    void beginFrame(uint32_t position)
    {
        mClock.setTicks(mStart + position);
        mClock.setWall(1700000000000 + position);
        frame.clear();
        frame.setResolution(rkvl::Resolution(static_cast<int32_t>(width), static_cast<int32_t>(height)));
        CameraFrame::stamp(frame, mStart);
        events.clear();
        mLogger.lines.clear();
    }

    /// 40 frames up to that position, at most 5000, in which the scene flashes once. The flash gives every pixel a spread
    /// above its minimum, without which nothing would ever differ; the mean comes back to the empty scene's value:
    /// 100, 109, 108, ..., 100 in steps of (mean * 116 + 100 * 12) >> 7.
    void learn(uint32_t last)
    {
        for (uint32_t i = 0; i < 40; ++i) {
            std::fill(mPixels.begin(), mPixels.end(), i == 1 ? 200 : empty);
            ASSERT_TRUE(show(last * i / 39));
        }
    }

    /// The regions of the frame as "x,y widthxheight score; ...".
    std::string regions() const
    {
        unsigned int count = 0;
        std::string text;
        for (rk_vertex const* region = frame.getUntracked("Moving", count); region; region = region->next)
            text += (text.empty() ? "" : "; ") + std::to_string(region->x) + "," + std::to_string(region->y) + " " +
                std::to_string(region->width) + "x" + std::to_string(region->height) +
                (region->motion_score == 1.0f ? " moving" : "");
        return text;
    }
    bool morphologyRan() const { return frame.isImageSet("Processed Image", rkil::MultiImage::flatGray); }
    std::string attribute(char const* name) const { return frame.getAttribute(name); }
    rk_image const& gray(char const* name) const { return *frame.getMultiImage(name).getFlatGray().getImage(); }
    unsigned char pixel(char const* name, uint32_t x, uint32_t y) const { return gray(name).data[x + y * width]; }
    bool logged(std::string const& line) const
    {
        return std::find(mLogger.lines.begin(), mLogger.lines.end(), line) != mLogger.lines.end();
    }

    uint32_t const width, height;

private:
    class RecordingLogger : public rktl::Logger {
    public:
        RecordingLogger()
            : Logger("")
        {
        }
        ~RecordingLogger() noexcept override { stop(rktl::ElapsedTime(5000)); }
        std::vector<std::string> lines;

    protected:
        rktl::String format(rktl::LogType const& type, rktl::String const& text) override
        {
            lines.push_back(text.substr(0, text.find('\n')));
            return Logger::format(type, text);
        }
        bool output(rktl::LogType const&, rktl::String const&) override { return true; }
    };

    static constexpr uint32_t mStart = 4294960000u; // ticks: they wrap around while the scene is learned
    VirtualClock mClock{1700000000000, mStart};
    RecordingLogger mLogger;

public:
    SimpleTracker tracker;
    ProcessFrame frame;
    rksl::List<Event> events;

private:
    std::vector<unsigned char> mPixels;
};
