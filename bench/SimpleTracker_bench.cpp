#include "application/SimpleTracker.h"

#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "image/rk_morphology.h"
#include "image/rk_threshold.h"
#include "misc/rk_clock.h"
#include "support/Footage.h"
#include "trackers/EventSpies/Direction.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#ifdef CONTRAFLOW_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/video.hpp>
#endif

// Frames a second of 640 x 480 gray on one core: the way of a frame from the video to its events, whole and stage by stage, and
// beside it the peer that a user would otherwise put together. items_per_second is frames a second throughout; times_peer tells
// how many times as fast the pipeline is, times_realtime how many times as fast as 25 frames a second.

namespace {

double secondsPerFrame = 0.0; // of the whole pipeline, once it was measured

uint32_t now = 0; // ms, the virtual clock

/// The application's clock follows the footage while one of these lives.
class FootageClock {
public:
    FootageClock()
    {
        now = 0;
        rk_clock const clock = {[] { return now; }, [] { return int64_t(1700000000000) + now; }};
        rk_clock_set(&clock);
    }
    ~FootageClock() { rk_clock_set(nullptr); }
};

SimpleTracker::Params params()
{
    SimpleTracker::Params params;
    params.mode = SimpleTracker::bothDetectors;
    Direction const spy("Heading", "", 180, 40, rktl::ElapsedTime(1000), 45);
    params.spies.push_back(EventSpyFactory(&spy));
    return params;
}

/// Of this thread's processor, so that other work on the machine does not count.
double seconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void finish(benchmark::State& state, uint64_t frames)
{
    state.SetItemsProcessed(static_cast<int64_t>(frames));
    state.counters["times_realtime"] = benchmark::Counter(static_cast<double>(frames) / 25.0, benchmark::Counter::kIsRate);
}

void decode(benchmark::State& state)
{
    uint64_t frames = 0;
    for (auto _ : state)
        frames += Footage::decode();
    finish(state, frames);
}
BENCHMARK(decode)->Unit(benchmark::kMillisecond);

/// From the camera's bytes to the list of events.
void pipeline(benchmark::State& state)
{
    Footage const& footage = Footage::get();
    uint64_t frames = 0;
    double spent = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        FootageClock const clock;
        auto const tracker = std::make_unique<SimpleTracker>(nullptr, 0, false);
        tracker->setParameters(params());
        CameraFrame camera;
        ProcessFrame frame;
        rksl::List<Event> events;
        state.ResumeTiming();
        double const start = seconds();
        for (uint32_t n = 0; n < footage.frames(); ++n) {
            now = n * Footage::period;
            frame.clear();
            camera.wrap(footage.frame(n).data, Footage::width, Footage::height, true, frame);
            CameraFrame::stamp(frame, 0);
            if (!tracker->process(frame, false, events))
                state.SkipWithError(tracker->getLastError().c_str());
        }
        spent += seconds() - start;
        frames += footage.frames();
    }
    secondsPerFrame = spent / static_cast<double>(frames);
    finish(state, frames);
}
BENCHMARK(pipeline)->Unit(benchmark::kMillisecond);

#ifdef CONTRAFLOW_OPENCV
/// A mixture of Gaussians without shadows, opened and closed with a square of 3 x 3, and labelled; one thread.
void peer(benchmark::State& state)
{
    cv::setNumThreads(1);
    Footage const& footage = Footage::get();
    cv::Mat const square = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3));
    cv::Mat foreground, labels, stats, centroids;
    uint64_t frames = 0;
    double spent = 0.0;
    for (auto _ : state) {
        auto const model = cv::createBackgroundSubtractorMOG2(500, 16, false);
        double const start = seconds();
        for (uint32_t n = 0; n < footage.frames(); ++n) {
            cv::Mat const image(Footage::height, Footage::width, CV_8UC1, footage.frame(n).data);
            model->apply(image, foreground);
            cv::morphologyEx(foreground, foreground, cv::MORPH_OPEN, square);
            cv::morphologyEx(foreground, foreground, cv::MORPH_CLOSE, square);
            cv::connectedComponentsWithStats(foreground, labels, stats, centroids);
        }
        spent += seconds() - start;
        frames += footage.frames();
    }
    finish(state, frames);
    if (secondsPerFrame > 0.0)
        state.counters["times_peer"] = spent / static_cast<double>(frames) / secondsPerFrame;
}
BENCHMARK(peer)->Unit(benchmark::kMillisecond);
#endif

// ---- The stages, each over the footage on its own ----

/// What the stages need, learned from the first five seconds; mask keeps the two-valued foreground of a later frame.
class Stages {
public:
    Stages()
    {
        rk_background_init(&background, Footage::width, Footage::height, 0);
        rk_background_set_weight(&background, 0.1f);
        rk_threshold_inittable(table, 256, 26);
        rk_detection_init(0.5f, 5, 5, rk_kernel_square, 4, &detection);
        for (rk_image* image : {&strength, &foreground, &scratch, &motion, &everywhere})
            rk_resize_image(image, Footage::width, Footage::height, 1, 255);
        for (uint32_t n = 0; n < Footage::learnFrames; ++n)
            learn(n);
    }
    ~Stages()
    {
        rk_background_deinit(&background);
        rk_detection_deinit(&detection);
        for (rk_image* image : {&strength, &foreground, &scratch, &motion, &everywhere})
            rk_free_image(image);
    }
    Stages(Stages const&) = delete;
    Stages& operator=(Stages const&) = delete;

    void learn(uint32_t n)
    {
        rk_image const frame = footage.frame(n);
        rk_background_update(&background, &frame, nullptr, everywhere.data);
    }
    void compare(uint32_t n)
    {
        rk_image const frame = footage.frame(n);
        uint32_t count = 0;
        rk_background_compare(&background, &frame, nullptr, &strength, &count);
    }
    void threshold() { rk_threshold_gray(table, 256, &strength, &foreground); }
    void close()
    {
        rk_dilate_image(&foreground, &foreground, &scratch);
        rk_erode_image(&foreground, &foreground, &scratch);
        rk_erode_image(&foreground, &foreground, &scratch);
        rk_dilate_image(&foreground, &foreground, &scratch);
    }
    void label()
    {
        rk_vertex* regions = nullptr;
        uint32_t count = 0;
        rk_conncomp_process(&foreground, 255, &detection.conncomp, &detection.kernel, &regions, &count);
        rk_free_vertices(&regions);
    }
    void detectMotion(uint32_t n)
    {
        rk_image const frame = footage.frame(n);
        rk_process(&frame, &scratch, &motion, &detection);
    }

    Footage const& footage = Footage::get();

private:
    rk_background background = {};
    rk_detection detection = {};
    rk_image strength = {}, foreground = {}, scratch = {}, motion = {}, everywhere = {};
    unsigned char table[256];
};

/// prepare is not measured, work is; both get the number of a frame after the learning.
template <class Prepare, class Work> void measure(benchmark::State& state, Prepare prepare, Work work)
{
    Stages stages;
    uint32_t n = Footage::learnFrames;
    uint64_t frames = 0;
    for (auto _ : state) {
        prepare(stages, n);
        double const start = seconds();
        work(stages, n);
        state.SetIterationTime(seconds() - start);
        ++frames;
        if (++n == stages.footage.frames())
            n = Footage::learnFrames;
    }
    finish(state, frames);
}

void nothing(Stages&, uint32_t) { }

void copyOfAFrame(benchmark::State& state)
{
    std::vector<unsigned char> copy(Footage::width * Footage::height);
    measure(state, nothing, [&](Stages& stages, uint32_t n) {
        std::memcpy(copy.data(), stages.footage.frame(n).data, copy.size());
        benchmark::ClobberMemory();
    });
}
BENCHMARK(copyOfAFrame)->UseManualTime()->Unit(benchmark::kMicrosecond);

void detectMotion(benchmark::State& state)
{
    measure(state, nothing, [](Stages& stages, uint32_t n) { stages.detectMotion(n); });
}
BENCHMARK(detectMotion)->UseManualTime()->Unit(benchmark::kMicrosecond);

void compareBackground(benchmark::State& state)
{
    measure(state, nothing, [](Stages& stages, uint32_t n) { stages.compare(n); });
}
BENCHMARK(compareBackground)->UseManualTime()->Unit(benchmark::kMicrosecond);

void threshold(benchmark::State& state)
{
    measure(
        state, [](Stages& stages, uint32_t n) { stages.compare(n); }, [](Stages& stages, uint32_t) { stages.threshold(); });
}
BENCHMARK(threshold)->UseManualTime()->Unit(benchmark::kMicrosecond);

void closeAndOpen(benchmark::State& state)
{
    measure(
        state,
        [](Stages& stages, uint32_t n) {
            stages.compare(n);
            stages.threshold();
        },
        [](Stages& stages, uint32_t) { stages.close(); });
}
BENCHMARK(closeAndOpen)->UseManualTime()->Unit(benchmark::kMicrosecond);

void label(benchmark::State& state)
{
    measure(
        state,
        [](Stages& stages, uint32_t n) {
            stages.compare(n);
            stages.threshold();
            stages.close();
        },
        [](Stages& stages, uint32_t) { stages.label(); });
}
BENCHMARK(label)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// Once in 13 frames in the application, after its first five seconds.
void updateBackground(benchmark::State& state)
{
    measure(state, nothing, [](Stages& stages, uint32_t n) { stages.learn(n); });
}
BENCHMARK(updateBackground)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
