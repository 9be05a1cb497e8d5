#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "application/SimpleTracker.h"
#include "misc/rk_clock.h"
#include "support/Footage.h"
#include "trackers/EventSpies/EventDetectorParams.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <benchmark/benchmark.h>

#include <ctime>

// What 50 spies of all kinds cost with 50 objects in view, in 640 x 480 gray, beside the whole pipeline without spies. The goal
// is a tenth of the pipeline's time: share_of_pipeline at most 0.1.

namespace {

constexpr int spyCount = 50;
constexpr int objectCount = 50;
constexpr int64_t path = 15000; // ms of each object's track

double pipelineSeconds = 0.0; // for a frame

uint32_t now = 0; // ms, the virtual clock

class BenchClock {
public:
    BenchClock()
    {
        now = 0;
        rk_clock const clock = {[] { return now; }, [] { return int64_t(1700000000000) + now; }};
        rk_clock_set(&clock);
    }
    ~BenchClock() { rk_clock_set(nullptr); }
};

/// Of this thread's processor, so that other work on the machine does not count.
double seconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void begin(ProcessFrame& frame, rk_image const& picture)
{
    frame.clear();
    frame.setResolution(rkvl::Resolution(Footage::width, Footage::height));
    frame.setImage("Native Image", picture, rkil::MultiImage::flatGray);
    CameraFrame::stamp(frame, 0);
}

/// The footage through the pipeline without spies, again and again.
void pipeline(benchmark::State& state)
{
    Footage const& footage = Footage::get();
    BenchClock const clock;
    SimpleTracker tracker(nullptr, 0, false);
    SimpleTracker::Params params;
    params.mode = SimpleTracker::bothDetectors;
    tracker.setParameters(params);
    ProcessFrame frame;
    double spent = 0.0;
    uint32_t number = 0;
    auto const next = [&] {
        begin(frame, footage.frame(number++ % footage.frames()));
        double const start = seconds();
        rksl::List<Event> events;
        tracker.process(frame, false, events);
        now += Footage::period;
        return seconds() - start;
    };
    while (number < Footage::learnFrames)
        next();
    for (auto _ : state)
        spent += next();
    pipelineSeconds = spent / static_cast<double>(state.iterations());
    state.counters["us_per_frame"] = pipelineSeconds * 1e6;
}
BENCHMARK(pipeline)->Iterations(374);

/// As many of each kind as there is room for.
EventDetectorParams allKinds(int64_t interval)
{
    EventDetectorParams params{rktl::ElapsedTime(interval)};
    while (params.getSpyFactories().size() < spyCount)
        for (auto const& [type, xml] : EventSpyFactory::getAllEventSpies()) {
            if (params.getSpyFactories().size() == spyCount)
                break;
            unsigned short const id = EventSpyFactory::getSpyType(type);
            EventSpyFactory factory(id);
            if (!factory.getSpy())
                factory.fromXML(xml.c_str());
            factory.getSpy()->setName(rktl::String::fromFormat("spy %u", unsigned(params.getSpyFactories().size())));
            params.getSpyFactories().push_back(factory);
        }
    return params;
}

/// Regions for the tracking stage: a grid of 10 x 5 that drifts to and fro by 80 pixels, so that lines and zones are crossed.
void addRegions(ProcessFrame& frame, int64_t time)
{
    int const phase = static_cast<int>(time / 50 % 160), shift = phase < 80 ? phase : 160 - phase;
    for (int i = 0; i < objectCount; ++i)
        frame.addUntracked({i % 10 * 55 + shift, 20 + i / 10 * 90, 24, 36}, "Moving", 1.0f);
}

/// range(0): least spacing of the frames that the spies see, ms.
void spies(benchmark::State& state)
{
    BenchClock const clock;
    Footage const& footage = Footage::get();
    ObjectTracker tracker;
    tracker.setParameters(SimpleTracker::trackerParameters({}));
    EventDetector detector;
    detector.setParameters(allKinds(state.range(0)));
    std::vector<unsigned char> foreground(footage.frame(0).size);
    for (size_t i = 0; i < foreground.size(); ++i)
        foreground[i] = i / 24 % 5 == 0 ? 255 : 0;
    rk_image processed = footage.frame(0);
    processed.data = foreground.data();
    ProcessFrame frame;
    size_t objects = 0, events = 0;
    auto const next = [&] {
        begin(frame, footage.frame(now / Footage::period % footage.frames()));
        frame.setImage("Processed Image", processed, rkil::MultiImage::flatGray);
        addRegions(frame, now);
        tracker.processFrame(frame);
        objects = frame.getObjects().size();
        double const start = seconds();
        detector.processFrame(frame);
        double const spent = seconds() - start;
        rksl::List<Event> raised;
        detector.getEvents(raised);
        events += raised.size();
        now += Footage::period;
        return spent;
    };
    while (now < path)
        next();
    double spent = 0.0;
    for (auto _ : state)
        spent += next();
    double const each = spent / static_cast<double>(state.iterations());
    state.counters["objects"] = static_cast<double>(objects);
    state.counters["events"] = static_cast<double>(events);
    state.counters["us_per_frame"] = each * 1e6;
    state.counters["share_of_pipeline"] = pipelineSeconds > 0 ? each / pipelineSeconds : 0;
}
BENCHMARK(spies)->Arg(200)->Arg(0)->Iterations(500);

} // namespace
