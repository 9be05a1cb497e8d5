#include "Collect.h"

#include "BaseClasses/ProcessFrame.h"
#include "ReviewFolder.h"
#include "support/SettingsFile.h"

#include <iostream>
#include <list>

namespace tools {

namespace {

/// Takes the samples of one pipeline after the other into the file and the folder.
class Collector {
public:
    explicit Collector(CollectOptions const& options)
        : mOptions(options)
        , mFile(options.out, true)
        , mFolder(ReviewFolder::of(options.out))
    {
    }

    void collectVideo(std::string const& video, volatile std::sig_atomic_t const& stop)
    {
        RunOptions run;
        SvmClassification* stage = nullptr;
        mVideo = std::filesystem::path(video).filename().string();
        mInVideo = 0;
        run.started = [&](SimpleTracker& tracker) { stage = &begin(tracker); };
        run.ended = [&](SimpleTracker&) {
            stage->collectRemaining();
            take(*stage);
        };
        runRecording(
            video, RunPlan(readSettingsFile(mOptions.settings)), mOptions.span, stop, run, [&](FrameResult const& result) {
                mPosition = result.frame.getPosition();
                if (mOptions.span.contains(mPosition.toMilliseconds()))
                    stage->startDataCollection(mOptions.className == TrainingData::noise ? Collection::withBackground : 0);
                take(*stage);
            });
        std::cout << mVideo << ": " << mInVideo << " samples" << std::endl;
    }

    size_t total() const { return mFile.samples().size(); }

private:
    SvmClassification& begin(SimpleTracker& tracker)
    {
        SvmClassification& stage = tracker.getClassification();
        stage.enable(true); // without models nothing else would
        stage.setSampleObserver([this](TrainingData const&, rkil::FlatImage<4> const& montage) { mMontages.push_back(montage); });
        return stage;
    }

    /// The picture first: a sample that is in the file and has none would count as struck.
    void take(SvmClassification& stage)
    {
        auto const samples = stage.queryTrainingData();
        auto montage = mMontages.begin();
        for (TrainingData sample : samples) {
            sample.mClassName = mOptions.className;
            sample.mNumber = mFile.add(sample);
            mFolder.add(sample, *(montage++)->getImage(), originOf(sample));
        }
        mMontages.clear();
        mInVideo += samples.size();
        if (!samples.empty())
            mFile.save();
    }

    std::string originOf(TrainingData const& sample) const
    {
        return rktl::String::fromFormat("%s\tuntil %.1f s\t%zu records", mVideo.c_str(),
            double(mPosition.toMilliseconds()) / 1000, sample.readFeatures().size());
    }

    CollectOptions const& mOptions;
    SampleFile mFile;
    ReviewFolder mFolder;
    std::list<rkil::FlatImage<4>> mMontages; // of the samples that were not taken yet, in their order
    std::string mVideo;
    size_t mInVideo = 0; // samples
    rktl::ElapsedTime mPosition;
};

} // namespace

void collect(CollectOptions const& options, volatile std::sig_atomic_t const& stop)
{
    Collector collector(options);
    for (std::string const& video : options.videos)
        if (!stop)
            collector.collectVideo(video, stop);
    std::cout << options.out.string() << ": " << collector.total() << " samples in all; look at the pictures in "
              << ReviewFolder::of(options.out).string() << ", strike the wrong ones, then: contraflow-train review "
              << ReviewFolder::of(options.out).string() << std::endl;
}

} // namespace tools
