#include "detection/rk_conncomp.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

// Pixels a second of a 640 x 480 foreground, by kernel: nothing, a dozen squares of 40 pixels, and noise of one pixel in a
// hundred, which is the most labels that a scene gives. The baseline is a search for the first foreground pixel.

namespace {

constexpr uint32_t width = 640, height = 480;

enum Contents : int64_t { emptyScene, squares, noise };

class Foreground {
public:
    explicit Foreground(int64_t contents)
    {
        rk_init_image(&image, width, height, 1);
        std::mt19937 random(1);
        if (contents == squares)
            for (uint32_t i = 0; i < 12; ++i)
                for (uint32_t y = 0; y < 40; ++y)
                    memset(image.data + (60 + i / 4 * 120 + y) * width + 40 + i % 4 * 150, 255, 40);
        if (contents == noise)
            for (uint32_t i = 0; i < image.size; ++i)
                image.data[i] = random() % 100 == 0 ? 255 : 0;
    }
    ~Foreground() { rk_free_image(&image); }
    rk_image image;
};

void search(benchmark::State& state)
{
    Foreground const foreground(emptyScene);
    for (auto _ : state)
        benchmark::DoNotOptimize(memchr(foreground.image.data, 255, foreground.image.size));
    state.SetItemsProcessed(state.iterations() * width * height);
}
BENCHMARK(search);

void label(benchmark::State& state)
{
    Foreground const foreground(state.range(0));
    rk_conncomp conncomp;
    rk_kernel kernel;
    rk_conncomp_init(64, &conncomp);
    rk_init_kernel(&kernel, static_cast<uint32_t>(state.range(1)), static_cast<uint32_t>(state.range(1)), rk_kernel_square);
    uint32_t count = 0;
    for (auto _ : state) {
        rk_vertex* regions = nullptr;
        rk_conncomp_process(&foreground.image, 255, &conncomp, &kernel, &regions, &count);
        rk_free_vertices(&regions);
    }
    state.counters["regions"] = count;
    state.SetItemsProcessed(state.iterations() * width * height);
    rk_conncomp_deinit(&conncomp);
    rk_free_kernel(&kernel);
}
BENCHMARK(label)->ArgsProduct({{emptyScene, squares, noise}, {5, 11}});

} // namespace
