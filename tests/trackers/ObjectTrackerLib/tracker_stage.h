#pragma once

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_image.h"
#include "trackers/ObjectTrackerLib/ObjectTracker.h"

#include <string>
#include <vector>

/// The tracking stage on a black picture of 160 x 120 pixels, and the one frame that it is driven with.
class TrackerStage {
public:
    using Box = rkml::BoundingBox<int>;

    struct Region {
        Box box;
        float motion = 1.0f;
        uint32_t colour = 0xff0000; // red, green, blue
        char const* name = "Moving";
    };

    explicit TrackerStage(ObjectTrackerParams const& params = ObjectTrackerParams()) { stage.setParameters(params); }

    /// Prepares the frame of that moment, with these regions, painted.
    TrackerStage& prepare(int64_t milliseconds, std::vector<Region> const& regions, double scale = 1.0)
    {
        frame.clear();
        frame.setScale(scale);
        frame.setResolution(rkvl::Resolution(width, height));
        frame.setTimePosition(rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'000'000'000'000 + milliseconds)),
            rktl::ElapsedTime(milliseconds));
        std::vector<unsigned char> pixels(width * height * 4);
        for (Region const& region : regions) {
            for (int y = region.box.y; y < region.box.y + region.box.height; ++y)
                for (int x = region.box.x; x < region.box.x + region.box.width; ++x)
                    for (unsigned int channel = 0; channel < 3; ++channel)
                        pixels[4 * (static_cast<unsigned int>(y) * width + static_cast<unsigned int>(x)) + channel] =
                            static_cast<unsigned char>(region.colour >> (8 * channel));
            frame.addUntracked(region.box, region.name, region.motion);
        }
        rk_image const image = {pixels.data(), width, height, 4, width * height * 4};
        frame.setImage(scale == 1.0 ? "Native Image" : "Native-Scaled", image, 1);
        return *this;
    }

    /// Prepares and processes a frame. Returns "id:state ..." of its objects, "failed" when the stage failed.
    std::string step(int64_t milliseconds, std::vector<Region> const& regions, double scale = 1.0)
    {
        return prepare(milliseconds, regions, scale).run();
    }

    std::string run()
    {
        if (!stage.processFrame(frame))
            return "failed";
        std::string text;
        for (auto const& [id, object] : frame.getObjects())
            text += (text.empty() ? "" : " ") + std::to_string(id.value) + ":" + std::to_string(object.getState());
        return text;
    }

    static constexpr unsigned int width = 160;
    static constexpr unsigned int height = 120;

    ObjectTracker stage;
    ProcessFrame frame;
};
