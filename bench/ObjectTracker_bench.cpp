#include <benchmark/benchmark.h>

#include "BaseClasses/ProcessFrame.h"
#include "image/rk_image.h"
#include "trackers/ObjectTrackerLib/ObjectTracker.h"

#include <cstdint>
#include <vector>

namespace {

/// The tracking stage in the steady state: so many objects of 24 x 36 pixels in 640 x 480, each with a path of 15 s at 25
/// frames a second. Items are frames. The second argument switches on the advanced histograms.
void objectTrackerFrame(benchmark::State& state)
{
    constexpr uint32_t width = 640, height = 480;
    constexpr int64_t interval = 40, path = 15000; // ms
    std::vector<unsigned char> pixels(width * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>((i / 4 % width / 40 * 37 + i % 4 * 60 + i % 7) & 255);
    rk_image const image = {pixels.data(), width, height, 4, width * height * 4};
    ObjectTrackerParams params;
    params.mResurrectionWindow = rktl::ElapsedTime(15000);
    params.mAdvancedHistograms = static_cast<int32_t>(state.range(1));
    ObjectTracker stage;
    stage.setParameters(params);
    ProcessFrame frame;
    int64_t now = 0;
    auto const prepare = [&] {
        frame.clear();
        frame.setResolution(rkvl::Resolution(width, height));
        frame.setTimePosition(
            rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'000'000'000'000 + now)), rktl::ElapsedTime(now));
        frame.setImage("Native Image", image, 1);
        for (int i = 0; i < state.range(0); ++i)
            frame.addUntracked({20 + i % 12 * 48 + int(now / interval % 8), 20 + i / 12 * 70, 24, 36}, "Moving", 1.0f);
        now += interval;
    };
    while (now < path) {
        prepare();
        stage.processFrame(frame);
    }
    for (auto _ : state) {
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
        stage.processFrame(frame);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(objectTrackerFrame)->Args({20, 0})->Args({50, 0})->Args({20, 1})->Args({50, 1});

} // namespace
