#include <benchmark/benchmark.h>

#include "detection/rk_tracker.h"
#include "image/rk_image.h"
#include "image/rk_vertex.h"

#include <cstdint>
#include <random>
#include <vector>

// A colour picture of 640 x 480: smooth areas with noise, as a camera gives, and a grid of regions.
namespace {

constexpr uint32_t Width = 640;
constexpr uint32_t Height = 480;

class Street {
public:
    Street(uint32_t regions, uint32_t width, uint32_t height)
        : mPixels(Width * Height * 4)
        , mRegions(regions)
    {
        std::mt19937 random(7);
        for (uint32_t i = 0; i < mPixels.size(); ++i)
            mPixels[i] = static_cast<unsigned char>((i / 4 % Width / 40 * 37 + i % 4 * 60 + random() % 24) & 255);
        uint32_t const columns = (Width - 20) / (width + 5);
        for (uint32_t i = 0; i < regions; ++i)
            mRegions[i] = {10 + i % columns * (width + 5), 10 + i / columns * (height + 5), width, height, 1.0f,
                i + 1 < regions ? &mRegions[i + 1] : nullptr};
        mImage = {mPixels.data(), Width, Height, 4, Width * Height * 4};
        frame.image = &mImage;
        frame.vertices = mRegions.data();
        frame.vertex_count = regions;
        frame.min_score = 0.5f;
        frame.min_track_length = 3;
        frame.max_track_merges = 4;
        frame.defer_time = 1000;
    }

    rk_tracker_frame frame = {};

private:
    std::vector<unsigned char> mPixels;
    std::vector<rk_vertex> mRegions;
    rk_image mImage = {};
};

/// The definition: each histogram in a walk of its own. Items are pixels of the box.
void histogramsOneByOne(benchmark::State& state)
{
    Street street(1, 60, 120);
    rk_histogram histograms[RK_BOX_HISTOGRAMS];
    rk_bbox const parts[] = {{10, 10, 60, 60}, {10, 70, 60, 60}, {40, 10, 30, 120}, {10, 10, 30, 120}, {10, 10, 60, 120}};
    for (auto _ : state) {
        for (unsigned int i = 0; i < RK_BOX_HISTOGRAMS; ++i)
            rk_histogram_set(&histograms[i], street.frame.image, nullptr, &parts[i]);
        benchmark::DoNotOptimize(histograms);
    }
    state.SetItemsProcessed(state.iterations() * 60 * 120);
}
BENCHMARK(histogramsOneByOne);

void populateHistograms(benchmark::State& state)
{
    Street street(1, 60, 120);
    rk_histogram histograms[RK_BOX_HISTOGRAMS];
    rk_bbox const box = {10, 10, 60, 120};
    for (auto _ : state) {
        rk_tracker_populate_histograms(histograms, &street.frame, &box);
        benchmark::DoNotOptimize(histograms);
    }
    state.SetItemsProcessed(state.iterations() * 60 * 120);
}
BENCHMARK(populateHistograms);

/// A whole step in the steady state, so many tracked objects of 60 x 90 pixels. Items are frames.
void trackerStep(benchmark::State& state)
{
    Street street(static_cast<uint32_t>(state.range(0)), 60, 90);
    rk_object_list list;
    rk_object_list_init(&list, 0);
    for (auto _ : state) {
        street.frame.now += 40;
        rk_tracker_process(&street.frame, &list);
    }
    rk_object_list_free(&list);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(trackerStep)->Arg(1)->Arg(8)->Arg(32);

} // namespace
