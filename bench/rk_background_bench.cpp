#include "detection/rk_background.h"
#include "image/rk_image.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

// Milliseconds a frame of 640x480, by mode (0 gray, 1 BGR, 2 Lab) and standard deviation of the sensor's noise. The
// baseline is the copy of a frame's bytes.

namespace {

constexpr uint32_t width = 640;
constexpr uint32_t height = 480;

class Scene {
public:
    Scene(int mode, int noise)
        : mMode(mode)
        , mMask(width * height, 255)
    {
        std::mt19937 random(1);
        std::normal_distribution<float> jitter(0.0f, (float)noise);
        uint32_t const channels = mode ? 4 : 1;
        for (rk_image& frame : mFrames) {
            rk_init_image(&frame, width, height, channels);
            for (uint32_t i = 0; i < frame.size; ++i)
                frame.data[i] = (uint8_t)std::clamp((float)(i / channels % width) / 4.0f + 40.0f + jitter(random), 0.0f, 255.0f);
        }
        rk_init_image(&mForeground, width, height, 1);
        rk_background_init(&mBackground, width, height, mode);
        for (int i = 0; i < 50; ++i)
            learn();
    }
    ~Scene()
    {
        for (rk_image& frame : mFrames)
            rk_free_image(&frame);
        rk_free_image(&mForeground);
        rk_background_deinit(&mBackground);
    }
    Scene(Scene const&) = delete;
    Scene& operator=(Scene const&) = delete;

    void learn()
    {
        rk_image const* frame = next();
        rk_background_update(&mBackground, mMode ? nullptr : frame, mMode ? frame : nullptr, mMask.data());
    }

    void compare(rk_image const* frame)
    {
        uint32_t count = 0;
        rk_background_compare(&mBackground, frame, nullptr, &mForeground, &count);
        benchmark::DoNotOptimize(count);
    }

    rk_image const* next() { return &mFrames[++mNext % 8]; }

private:
    int const mMode;
    rk_background mBackground = {};
    rk_image mFrames[8] = {};
    rk_image mForeground = {};
    std::vector<uint8_t> mMask;
    size_t mNext = 0;
};

void update(benchmark::State& state)
{
    Scene scene((int)state.range(0), (int)state.range(1));
    for (auto _ : state)
        scene.learn();
}

void compare(benchmark::State& state)
{
    Scene scene((int)state.range(0), (int)state.range(1));
    for (auto _ : state)
        scene.compare(scene.next());
}

/// Every pixel differs: a lamp was switched on.
void compareAllDiffer(benchmark::State& state)
{
    Scene scene((int)state.range(0), (int)state.range(1));
    rk_image white = {};
    rk_resize_image(&white, width, height, state.range(0) ? 4 : 1, 255);
    for (auto _ : state)
        scene.compare(&white);
    rk_free_image(&white);
}

void copyFrame(benchmark::State& state)
{
    Scene scene((int)state.range(0), (int)state.range(1));
    rk_image copy = {};
    for (auto _ : state) {
        rk_copy_image(scene.next(), &copy);
        benchmark::DoNotOptimize(copy.data[0]);
    }
    rk_free_image(&copy);
}

void modesAndNoise(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"mode", "noise"})->ArgsProduct({{0, 1, 2}, {3, 20}})->Unit(benchmark::kMillisecond);
}

BENCHMARK(update)->Apply(modesAndNoise);
BENCHMARK(compare)->Apply(modesAndNoise);
BENCHMARK(compareAllDiffer)->Apply(modesAndNoise);
BENCHMARK(copyFrame)->ArgNames({"mode", "noise"})->Args({0, 3})->Args({1, 3})->Unit(benchmark::kMillisecond);

} // namespace
