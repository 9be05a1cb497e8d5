#include "detection/rk_detection.h"

#include <benchmark/benchmark.h>

#include <random>

// Pixels a second of 640 x 480, by channels, and by how much the sensor's noise reaches beyond the threshold: not at all, or
// everywhere. The baseline is the copy of a frame.

namespace {

constexpr uint32_t width = 640, height = 480;
constexpr uint32_t frameCount = 8;

class Frames {
public:
    Frames(uint32_t channels, bool noisy)
    {
        std::mt19937 random(1);
        for (rk_image& frame : frames) {
            rk_init_image(&frame, width, height, channels);
            for (uint32_t i = 0; i < frame.size; ++i)
                frame.data[i] = static_cast<unsigned char>(random() % (noisy ? 256 : 16));
        }
        rk_init_image(&scratch, width, height, 1);
    }
    ~Frames()
    {
        for (rk_image& frame : frames)
            rk_free_image(&frame);
        rk_free_image(&scratch);
        rk_free_image(&result);
    }
    rk_image frames[frameCount], scratch, result = {};
};

void copy(benchmark::State& state)
{
    Frames frames(static_cast<uint32_t>(state.range(0)), false);
    uint32_t next = 0;
    for (auto _ : state)
        rk_copy_image(&frames.frames[++next % frameCount], &frames.result);
    state.SetItemsProcessed(state.iterations() * width * height);
}
BENCHMARK(copy)->Arg(1)->Arg(4);

void process(benchmark::State& state)
{
    Frames frames(static_cast<uint32_t>(state.range(0)), state.range(1) != 0);
    rk_detection detection;
    rk_detection_init(0.5f, 5, 5, rk_kernel_square, 4, &detection);
    uint32_t next = 0;
    for (auto _ : state)
        rk_process(&frames.frames[++next % frameCount], &frames.scratch, &frames.result, &detection);
    state.SetItemsProcessed(state.iterations() * width * height);
    rk_detection_deinit(&detection);
}
BENCHMARK(process)->ArgsProduct({{1, 4}, {0, 1}});

} // namespace
