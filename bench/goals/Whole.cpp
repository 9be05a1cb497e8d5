#include "goals/Whole.h"

#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "application/SimpleTracker.h"
#include "goals/Clip.h"
#include "goals/Extraction.h"
#include "image/rk_row.h"
#include "misc/rk_clock.h"
#include "trackers/EventSpies/Direction.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <unistd.h>

// Every allocation of the program passes here: operator new of the library is built on malloc.
extern "C" void* __libc_malloc(size_t);
extern "C" void* __libc_calloc(size_t, size_t);
extern "C" void* __libc_realloc(void*, size_t);
static std::atomic<uint64_t> allocations{0};
extern "C" void* malloc(size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* block, size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}

namespace {

constexpr uint32_t width = 1280, height = 720, things = 20, side = 40;
uint32_t now = 0; // ms, the virtual clock

/// Twenty textured squares in as many places of a grid; each shuttles over its place, bright and dark in turn along its side.
void paint(rk_image& frame, uint32_t n)
{
    for (uint32_t i = 0; i < things; ++i) {
        uint32_t const phase = (n * 3 + i * 37) % 240;
        uint32_t const left = 10 + i % 5 * 250 + (phase < 120 ? phase : 240 - phase);
        uint32_t const top = 20 + i / 5 * 175 + i * 3;
        for (uint32_t y = top; y < top + side; ++y)
            for (uint32_t x = left; x < left + side; ++x)
                frame.data[x + y * width] = (x - left) / 8 % 2 ? 250 : 5;
    }
}

SimpleTracker::Params params()
{
    SimpleTracker::Params params;
    params.mode = SimpleTracker::bothDetectors;
    Direction const spy("Heading", "", 180, 40, rktl::ElapsedTime(1000), 45);
    params.spies.push_back(EventSpyFactory(&spy));
    return params;
}

long residentBytes()
{
    long pages = 0, resident = 0;
    if (FILE* const file = fopen("/proc/self/statm", "r")) {
        if (fscanf(file, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        fclose(file);
    }
    return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

Whole::Whole(std::string const& video)
{
    constexpr uint32_t learnFrames = 550; // 5 s without comparison, and until objects have the 15 s of path that they keep
    constexpr uint32_t frames = learnFrames + 100;
    constexpr uint32_t clipFrames = 100; // shown again and again
    rk_clock const clock = {[] { return now; }, [] { return int64_t(1700000000000) + now; }};
    rk_clock_set(&clock);
    Clip clip(video, width, height, clipFrames);
    auto const tracker = std::make_unique<SimpleTracker>(nullptr, 0, false);
    tracker->setParameters(params());
    Extraction extraction(width, height);
    CameraFrame camera;
    ProcessFrame frame;
    rksl::List<Event> events;
    std::vector<unsigned char> painted(size_t(width) * height);
    uint64_t allocated = 0, allocatedByPixels = 0;
    for (uint32_t n = 0; n < frames; ++n) {
        rk_image const scene = clip.frame(n % clipFrames);
        std::copy_n(scene.data, scene.size, painted.begin());
        rk_image image = {painted.data(), width, height, 1, scene.size};
        paint(image, n);
        now = n * Clip::period;
        auto const pixels = [&] {
            extraction.detectMotion(image);
            extraction.compare(image);
            extraction.threshold();
            extraction.closeAndOpen();
            extraction.label();
        };
        auto const everything = [&] {
            events.clear();
            tracker->process(frame, false, events);
        };
        frame.clear();
        camera.wrap(image.data, width, height, true, frame);
        CameraFrame::stamp(frame, 0);
        if (n < learnFrames) {
            extraction.learn(image);
            pixels();
            everything();
            continue;
        }
        uint64_t const before = allocations;
        pipeline.push_back(seconds(pixels));
        uint64_t const between = allocations;
        process.push_back(seconds(everything));
        allocatedByPixels += between - before;
        allocated += allocations - between;
        objects += static_cast<double>(frame.getObjects().size()) / (frames - learnFrames);
    }
    rk_clock_set(nullptr);
    allocationsPerFrame = static_cast<double>(allocated) / (frames - learnFrames);
    pipelineAllocationsPerFrame = static_cast<double>(allocatedByPixels) / (frames - learnFrames);
}

double bytesPerPixel()
{
    constexpr uint32_t columns = 1920, rows = 1080;
    std::vector<unsigned char> pixels(size_t(columns) * rows, 90);
    rk_image const image = {pixels.data(), columns, rows, 1, columns * rows};
    long const before = residentBytes();
    Extraction extraction(columns, rows);
    for (uint32_t n = 0; n < 12; ++n) {
        pixels[n] = 255;
        extraction.detectMotion(image);
        extraction.learn(image);
        extraction.compare(image);
        extraction.threshold();
        extraction.closeAndOpen();
        extraction.label();
    }
    return static_cast<double>(residentBytes() - before) / (columns * rows);
}

ColourCompare::ColourCompare()
{
    constexpr uint32_t columns = 640, rows = 480;
    std::mt19937 random(14);
    std::vector<unsigned char> bytes(size_t(columns) * rows * 4), mask(size_t(columns) * rows, 255), out(mask.size());
    rk_image image = {bytes.data(), columns, rows, 4, columns * rows * 4};
    rk_image foreground = {out.data(), columns, rows, 1, columns * rows};
    rk_background model = {};
    rk_background_init(&model, columns, rows, 1);
    // A textured scene with noise, and in each frame a bright object on a twentieth of it.
    auto const draw = [&](uint32_t n) {
        for (uint32_t i = 0; i < columns * rows; ++i) {
            bool const isObject = (i / columns - n * 2) % rows < 90 && i % columns - 200 < 170;
            for (uint32_t channel = 0; channel < 4; ++channel)
                bytes[4 * i + channel] = static_cast<unsigned char>((isObject ? 200 : 60 + i % 50) + random() % 8);
        }
    };
    for (uint32_t n = 0; n < 60; ++n) {
        draw(n * 4);
        rk_background_update(&model, nullptr, &image, mask.data());
    }
    for (uint32_t n = 0; n < 40; ++n) {
        draw(n);
        for (uint32_t turn = 0; turn < 2; ++turn) {
            bool const isPlain = (n + turn) % 2 != 0;
            rk_row_use(isPlain ? "plain" : nullptr);
            uint32_t count = 0;
            (isPlain ? plain : fast).push_back(seconds([&] {
                rk_background_compare(&model, &image, nullptr, &foreground, &count);
            }));
        }
    }
    rk_row_use(nullptr);
    rk_background_deinit(&model);
}
