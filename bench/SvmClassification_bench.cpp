#include "BaseClasses/ProcessFrame.h"
#include "application/CameraFrame.h"
#include "application/SimpleTracker.h"
#include "misc/rk_clock.h"
#include "trackers/SvmClassification/SvmClassification.h"
#include "trackers/SvmClassification/SvmParameters.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <random>
#include <sys/resource.h>
#include <vector>

// What classification adds to the pipeline, on 640 x 480 gray with 20 objects and 4 classes of a few hundred support vectors
// each; and what a training of 2,000 records in 3 classes takes.

namespace {

constexpr uint32_t width = 640, height = 480, period = 40; // pixels, ms
constexpr uint32_t learnFrames = 126;                      // 5 s and one frame
constexpr uint32_t frames = 250;                           // measured
constexpr uint32_t blocks = 14; // of which the tracker follows both edges at times: 20 objects on average

uint32_t now = 0; // ms, the virtual clock

double seconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Records of a class: each feature spreads around a centre of its own, so that neighbouring classes overlap.
rksl::List<ObjectFeatures> recordsOf(int number, int count)
{
    std::mt19937 random(static_cast<unsigned int>(number));
    std::normal_distribution<> spread(0, 60);
    rksl::List<ObjectFeatures> records;
    for (int i = 0; i < count; ++i) {
        ObjectFeatures features;
        for (size_t slot = 0; slot < 12; ++slot)
            features.orientHist[slot] = 300 + static_cast<int32_t>((number * 5 + int(slot) * 3) % 7 * 25 + spread(random));
        records.push_back(features);
    }
    return records;
}

/// Without the grid search: the machine's size is what counts here.
ClassificationModel modelOf(int number)
{
    svm_ranges ranges;
    for (int32_t id = 10; id < 22; ++id)
        ranges.push_back({id, 100, 700});
    SubClassifier classifier("class " + std::to_string(number), 1);
    constexpr uint32_t each = 400;
    classifier.initialize(4 * each, ranges);
    uint32_t index = 0;
    for (int other = 0; other < 4; ++other) {
        classifier.setClassValue(other == number ? 1 : -1);
        for (ObjectFeatures const& features : recordsOf(other, each)) {
            std::vector<svm_node> nodes;
            for (svm_range const& range : ranges)
                nodes.push_back({range.id, (features.getFeatureVal(range.id) - 400) / 300.0});
            nodes.push_back({-1, 0});
            classifier.insertTrainingElement(nodes.data(), index++);
        }
    }
    classifier.trainClass(SvmParameters("-c 8 -b 1 -g 0.5 -w 3"));
    return ClassificationModel("SVM", classifier.getName(), classifier.getModel(), true);
}

/// A grainy scene with textured blocks of 24 x 48 that move a pixel a frame.
class Picture {
public:
    Picture()
        : mScene(width * height)
    {
        std::mt19937 random(1);
        for (unsigned char& pixel : mScene)
            pixel = static_cast<unsigned char>(100 + random() % 5);
        mPixels = mScene;
    }

    unsigned char const* draw(uint32_t frame, bool withObjects)
    {
        mPixels = mScene;
        uint32_t const shift = frame % 120 < 60 ? frame % 60 : 60 - frame % 60; // to and fro
        for (uint32_t i = 0; withObjects && i < blocks; ++i)
            for (uint32_t y = 0; y < 48; ++y)
                for (uint32_t x = 0; x < 24; ++x)
                    mPixels[(30 + i / 5 * 110 + y) * width + 40 + i % 5 * 110 + shift + x] =
                        static_cast<unsigned char>((x / 6 + y / 12 + i) % 2 ? 240 : 30);
        return mPixels.data();
    }

private:
    std::vector<unsigned char> mScene, mPixels;
};

/// The argument: 0 when every object votes on every frame, which is what a first second is like; 1 for the 10 s from the objects'
/// first frame on as the application runs, where they settle.
void classification(benchmark::State& state)
{
    rk_clock const clock = {[] { return now; }, [] { return int64_t(1700000000000) + now; }};
    rk_clock_set(&clock);
    static std::vector<ClassificationModel> const models = {modelOf(0), modelOf(1), modelOf(2), modelOf(3)};
    double pipeline = 0, stageTime = 0;
    uint64_t seen = 0, measured = 0;
    for (auto _ : state) {
        now = 0;
        SimpleTracker::Params params;
        params.mode = SimpleTracker::bothDetectors;
        SimpleTracker tracker(nullptr, 0, false);
        tracker.setParameters(params);
        SvmClassification stage;
        stage.enable(true);
        for (ClassificationModel const& model : models)
            stage.setModel(model);
        stage.setConfidenceThreshold(state.range(0) ? 0.5 : -1.0);
        Picture picture;
        ProcessFrame frame;
        CameraFrame camera;
        rksl::List<Event> events;
        for (uint32_t n = 0; n < learnFrames + frames; ++n) {
            now = n * period;
            frame.clear();
            camera.wrap(picture.draw(n, n > learnFrames), width, height, true, frame);
            CameraFrame::stamp(frame, 0);
            double const start = seconds();
            tracker.process(frame, false, events);
            double const between = seconds();
            stage.processFrame(frame);
            if (n <= learnFrames)
                continue;
            pipeline += between - start;
            stageTime += seconds() - between;
            seen += frame.getObjects().size();
            ++measured;
        }
    }
    rk_clock_set(nullptr);
    state.counters["objects"] = double(seen) / double(measured);
    state.counters["pipeline_us"] = pipeline / double(measured) * 1e6;
    state.counters["classification_us"] = stageTime / double(measured) * 1e6;
    state.counters["percent_of_pipeline"] = 100 * stageTime / pipeline;
}
BENCHMARK(classification)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

double peakMebibytes(int who)
{
    rusage usage;
    getrusage(who, &usage);
    return double(usage.ru_maxrss) / 1024;
}

/// libsvm's share is all that is not the preparation of the records. Peaks are those of this process and of its largest helper.
void training(benchmark::State& state)
{
    rksl::List<TrainingData> data;
    for (int number = 0; number < 3; ++number)
        for (int sample = 0; sample < 20; ++sample)
            data.emplace_back(recordsOf(number, 33 + (sample < 7)), 0, "class " + std::to_string(number), rktl::TimeStamp());
    double prepared = 0, total = 0;
    auto const wall = [] {
        timespec time;
        clock_gettime(CLOCK_MONOTONIC, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    for (auto _ : state) {
        SvmClassifier classifier;
        rktl::String report;
        double const start = wall();
        classifier.setSVMStruct(data, {10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21});
        prepared += wall() - start;
        if (!classifier.trainSVM(nullptr, report))
            state.SkipWithError(report.c_str());
        total += wall() - start;
    }
    state.counters["libsvm_percent"] = 100 * (1 - prepared / total);
    state.counters["peak_MiB"] = peakMebibytes(RUSAGE_SELF);
    state.counters["helper_MiB"] = peakMebibytes(RUSAGE_CHILDREN);
}
BENCHMARK(training)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

} // namespace
