#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "application/SimpleTracker.h"
#include "misc/rk_clock.h"
#include "support/Footage.h"
#include "trackers/EventSpies/EventDetectorParams.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <ctime>

// What 50 spies of all kinds cost with 50 objects in view, in 640 x 480 gray, beside the whole pipeline without spies. The goal
// is a tenth of the pipeline's time: share_of_pipeline at most 0.1. The spies stand at different places, and the objects cross
// the view. Watching is what spies do nearly always: their rules are those of a site where alarms are the exception, such as
// objects that go the wrong way, five of the 50, or too fast. Alarming is the worst case: whatever moves breaks a rule all the
// time, and half of the time goes to the making of events.

namespace {

constexpr int spyCount = 50;
constexpr int objectCount = 50;
constexpr int64_t path = 15000; // ms of each object's track

enum Site : int64_t { watching, alarming };

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

/// The place of the nth spy of a kind: somewhere in the picture, a fifth of its width and a quarter of its height.
rkml::BoundingBox<float> placeOf(int n)
{
    constexpr float across = 0.25f, down = 0.3f;
    return {0.02f + across * static_cast<float>(n % 4), 0.1f + down * static_cast<float>(n % 3), 0.2f, 0.25f};
}

rktl::String polygon(char const* list, char const* item, rkml::BoundingBox<float> const& box)
{
    return rktl::String("<") + list + ">" + rkml::Polygon2D<float>(box).toXML(item, "vertex") + "</" + list + ">";
}

/// Upright, through the middle of the place.
rktl::String line(rkml::BoundingBox<float> const& place, float shift)
{
    float const x = place.x + place.width / 2 + shift;
    return rkml::Point2D<float>(x, place.y).toXML("first") + rkml::Point2D<float>(x, place.y + place.height).toXML("second");
}

/// Where nobody ought to be: beside the lanes.
rkml::BoundingBox<float> besideLanes(rkml::BoundingBox<float> const& place)
{
    return {place.x, 0.125f + 0.1875f * std::floor((place.y - 0.1f) * 5.0f), place.width, 0.08f};
}

/// What the rule of a kind says beside its zones. Four of a kind differ as a user's would: by heading, type or way.
rktl::String keysOf(Site site, rktl::String const& type, int n, rkml::BoundingBox<float> const& place)
{
    char const* const activities[] = {"Delta", "NewObject", "DeadObject", "Threshold"};
    if (type == "ActivitySpy")
        return rktl::String::fromFormat("<type>%s</type><max-activity>4</max-activity>", activities[n % 4]);
    if (type == "CrowdDensitySpy")
        return polygon("crowd-regions", "region", place);
    if (type == "DirectionSpy")
        return rktl::String::fromFormat("<angle>%d</angle><tolerance>30</tolerance><time-window unit=\"second\">2</time-window>",
            site == watching ? 180 : n % 4 * 90);
    if (type == "EnterExitSpy")
        return "<type>Both</type><zone-type>Exit</zone-type>";
    if (type == "IdleSpy")
        return "<wait-time unit=\"minute\">1</wait-time><movement>25</movement>";
    if (type == "LineCrossingSpy")
        return line(place, 0) +
            rktl::String::fromFormat("<cross-line>%d</cross-line><direction>%d</direction>", n % 2, site == watching ? 2 : n % 3);
    if (type == "ObjectTakenSpy")
        return "<sensitivity>0.5</sensitivity>" + rkml::Polygon2D<float>(place).toXML("region", "vertex");
    if (type == "PerimeterSpy")
        return polygon("perimeter-regions", "region", site == watching ? besideLanes(place) : place) +
            "<intrusion>0.5</intrusion>";
    if (type == "SpeedSpy") // 64 pixels apart: 44, 51 and up to 73 mph by the lane
        return "<speed-limit>" + rktl::String(site == watching ? "70" : "40") +
            "</speed-limit><distance>69</distance><unit>english</unit><first-segment>" + line(place, -0.05f) +
            "</first-segment><second-segment>" + line(place, 0.05f) + "</second-segment>";
    return {};
}

/// As many of each kind as there is room for.
EventDetectorParams allKinds(Site site, int64_t interval)
{
    EventDetectorParams params{rktl::ElapsedTime(interval)};
    for (int n = 0; params.getSpyFactories().size() < spyCount; ++n)
        for (auto const& [type, xml] : EventSpyFactory::getAllEventSpies()) {
            if (params.getSpyFactories().size() == spyCount)
                break;
            rkml::BoundingBox<float> const place = placeOf(n);
            rktl::String const text = "<" + type + "><EventSpy>" +
                rktl::String::fromFormat("<name>spy %u</name>", unsigned(params.getSpyFactories().size())) +
                polygon("zones", "zone", place) + "</EventSpy>" + keysOf(site, type, n, place) + "</" + type + ">";
            EventSpyFactory factory;
            if (!factory.fromXML(text.c_str()))
                std::abort();
            params.getSpyFactories().push_back(factory);
        }
    return params;
}

/// Regions for the tracking stage: five lanes of ten, from side to side in 6 to 10 s; who goes the wrong way does so beside his
/// lane. Who leaves the view at its end makes room for somebody new at its beginning.
void addRegions(Site site, ProcessFrame& frame, int64_t time)
{
    constexpr int lanes = 5, width = 24, height = 36, laneLength = int(Footage::width) - width;
    for (int i = 0; i < objectCount; ++i) {
        int const lane = i % lanes, gone = static_cast<int>(time * (60 + 10 * lane) / 1000);
        int const along = (i / lanes * (laneLength / (objectCount / lanes)) + gone) % laneLength;
        bool const isBack = site == watching ? i < lanes : lane % 2 != 0;
        int const beside = site == watching && isBack ? 40 : 0;
        frame.addUntracked({isBack ? laneLength - along : along, 20 + lane * 90 + beside, width, height}, "Moving", 1.0f);
    }
}

/// range(0): a Site. range(1): least spacing of the frames that the spies see, ms.
void spies(benchmark::State& state)
{
    BenchClock const clock;
    Footage const& footage = Footage::get();
    ObjectTracker tracker;
    tracker.setParameters(SimpleTracker::trackerParameters({}));
    EventDetector detector;
    Site const site = Site(state.range(0));
    detector.setParameters(allKinds(site, state.range(1)));
    std::vector<unsigned char> foreground(footage.frame(0).size);
    for (size_t i = 0; i < foreground.size(); ++i)
        foreground[i] = i / 24 % 5 == 0 ? 255 : 0; // less than a crowd
    rk_image processed = footage.frame(0);
    processed.data = foreground.data();
    ProcessFrame frame;
    size_t objects = 0, events = 0;
    auto const next = [&] {
        begin(frame, footage.frame(now / Footage::period % footage.frames()));
        frame.setImage("Processed Image", processed, rkil::MultiImage::flatGray);
        addRegions(site, frame, now);
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
BENCHMARK(spies)->ArgsProduct({{watching, alarming}, {200, 0}})->Iterations(500);

} // namespace
