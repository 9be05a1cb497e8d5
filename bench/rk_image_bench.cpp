#include "image/rk_image.h"
#include "image/rk_morphology.h"
#include "image/rk_sobel.h"
#include "image/rk_threshold.h"
#include "image/rkil_Conversion.h"
#include "image/rkil_FlatImage.h"
#include "image/rkil_MaskImage.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

/// The flat operations on a frame of 640 by 360, in pixels per second; the copy of a frame is what to hold them against.
namespace {

constexpr unsigned int width = 640, height = 360;

template <unsigned int N> rkil::FlatImage<N> noise()
{
    std::mt19937 random(1);
    rkil::FlatImage<N> image;
    image.resize(width, height);
    std::generate_n(image.getImage()->data, image.getImage()->size, [&] { return static_cast<unsigned char>(random()); });
    return image;
}

/// Runs work() for each iteration and reports pixels as items.
template <class Work> void measure(benchmark::State& state, Work work)
{
    for (auto _ : state) {
        work();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * width * height);
}

void copyGray(benchmark::State& state)
{
    auto const source = noise<1>();
    auto target = noise<1>();
    measure(state, [&] { rk_copy_image(source.getImage(), target.getImage()); });
}

void erode(benchmark::State& state)
{
    auto image = noise<1>(), scratch = noise<1>();
    measure(state, [&] { rk_erode_image(image.getImage(), image.getImage(), scratch.getImage()); });
}

/// The definition of erosion, nine reads a pixel: the baseline of the one above.
void erodeByDefinition(benchmark::State& state)
{
    auto const source = noise<1>();
    auto target = noise<1>();
    measure(state, [&] {
        for (unsigned int y = 1; y + 1 < height; ++y)
            for (unsigned int x = 1; x + 1 < width; ++x) {
                unsigned char const* const pixel = source.getImage()->data + x + y * width;
                unsigned char value = 255;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        value = static_cast<unsigned char>(value & pixel[dx + dy * static_cast<int>(width)]);
                target.getImage()->data[x + y * width] = value;
            }
    });
}

void threshold(benchmark::State& state)
{
    unsigned char table[256];
    rk_threshold_inittable(table, 256, 26);
    auto const source = noise<1>();
    auto target = noise<1>();
    measure(state, [&] { rk_threshold_gray(table, 256, source.getImage(), target.getImage()); });
}

void count(benchmark::State& state)
{
    auto const image = noise<1>();
    rk_bbox const box = {0, 0, width, height};
    uint32_t found = 0;
    measure(state, [&] { benchmark::DoNotOptimize(rk_image_count(&box, image.getImage(), 1, &found)); });
}

void sobel(benchmark::State& state)
{
    auto const image = noise<1>();
    std::vector<rk_magnitude> gradients(width * height);
    measure(state, [&] { rk_sobel_image(image.getImage(), gradients.data()); });
}

void lumaChannel(benchmark::State& state)
{
    auto const source = noise<4>();
    auto target = noise<1>();
    measure(state, [&] { rk_extract_channel(source.getImage(), target.getImage(), 3, 0); });
}

void colourToGray(benchmark::State& state)
{
    auto const source = noise<4>();
    auto target = noise<1>();
    measure(state, [&] { rkil::color2gray(*source.getImage(), *target.getImage()); });
}

void grayToColour(benchmark::State& state)
{
    auto const source = noise<1>();
    auto target = noise<4>();
    measure(state, [&] { rkil::gray2color(*source.getImage(), *target.getImage()); });
}

void colourToLab(benchmark::State& state)
{
    auto const source = noise<4>();
    auto target = noise<4>();
    measure(state, [&] { rkil::bgr2lab(*source.getImage(), *target.getImage()); });
}

template <unsigned int N> void mask(benchmark::State& state)
{
    rkil::MaskImage exclusion(width, height, 255, 0);
    auto image = noise<N>();
    measure(state, [&] { exclusion.maskImage(image, image); });
}

BENCHMARK(copyGray);
BENCHMARK(erode);
BENCHMARK(erodeByDefinition);
BENCHMARK(threshold);
BENCHMARK(count);
BENCHMARK(sobel);
BENCHMARK(lumaChannel);
BENCHMARK(colourToGray);
BENCHMARK(grayToColour);
BENCHMARK(colourToLab);
BENCHMARK(mask<1>);
BENCHMARK(mask<4>);

} // namespace
