#include "Train.h"

#include "SampleFile.h"
#include "support/ModelFolder.h"
#include "support/RecordFile.h"
#include "trackers/SvmClassification/SvmClassification.h"

#include <chrono>
#include <iostream>
#include <map>
#include <stdexcept>
#include <unistd.h>

namespace tools {

namespace {

constexpr unsigned int BAR = 24; // characters

/// Records by class.
using Counts = std::map<rktl::String, size_t>;

/// One line on a terminal: the class, how much of its grid is done, the best F1 so far, and the time that is left.
class TrainingBar : public Training::Listener {
public:
    explicit TrainingBar(size_t classes)
        : mClasses(classes)
    {
    }

    void onTrainingProgress(char const* text, float progress, unsigned int, unsigned int) override
    {
        if (progress < 0)
            mError = text;
    }

    void onGrid(SvmClassifier::GridProgress const& progress)
    {
        if (mAccuracies.emplace(progress.className, 0.0f).second)
            mClass = mAccuracies.size();
        mAccuracies[progress.className] = progress.accuracy;
        if (!isatty(STDERR_FILENO))
            return;
        unsigned int const filled = BAR * progress.point / progress.points;
        double const share =
            (double(mClass) - 1 + double(progress.point) / progress.points) / double(std::max<size_t>(mClasses, 1));
        std::chrono::duration<double> const spent = std::chrono::steady_clock::now() - mStart;
        auto const left = static_cast<unsigned int>(spent.count() / share * (1 - share) + 0.5);
        std::cerr << rktl::String::fromFormat("\r\033[K%s (%zu of %zu) [%s%s] F1 %.1f %%, %u:%02u left",
                         progress.className.c_str(), mClass, mClasses, std::string(filled, '#').c_str(),
                         std::string(BAR - filled, '.').c_str(), double(progress.accuracy), left / 60, left % 60)
                  << std::flush;
    }

    void clear() const
    {
        if (isatty(STDERR_FILENO))
            std::cerr << "\r\033[K" << std::flush;
    }

    /// "Error: ..." of a training that failed.
    std::string const& error() const { return mError; }
    float accuracy(rktl::String const& name) const { return mAccuracies.at(name); }

private:
    size_t const mClasses;
    size_t mClass = 0; // from 1
    std::map<rktl::String, float> mAccuracies;
    std::string mError;
    std::chrono::steady_clock::time_point const mStart = std::chrono::steady_clock::now();
};

Counts countRecords(rksl::List<TrainingData> const& samples)
{
    Counts counts;
    for (TrainingData const& sample : samples)
        counts[sample.mClassName] += sample.readFeatures().size();
    return counts;
}

std::string countsText(Counts const& counts)
{
    std::string text;
    for (auto const& [name, count] : counts)
        text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
    return text.empty() ? "none" : text;
}

[[noreturn]] void fail(TrainingBar const& bar, Counts const& counts)
{
    bar.clear();
    constexpr size_t bareError = 7; // "Error: "
    if (bar.error().size() > bareError)
        throw std::runtime_error("the training failed. " + bar.error());
    throw std::runtime_error(
        "the training needs at least 30 records, and two class names among them; there are: " + countsText(counts));
}

} // namespace

void train(std::filesystem::path const& out, std::vector<std::string> const& files)
{
    rksl::List<TrainingData> samples;
    for (std::string const& file : files)
        samples.splice(samples.end(), SampleFile(file).samples());
    Counts const counts = countRecords(samples);
    std::cout << samples.size() << " samples; records: " << countsText(counts) << std::endl;

    SvmClassification stage;
    TrainingBar bar(counts.size() - counts.count(TrainingData::noise));
    stage.setTrainingListener(&bar);
    stage.setGridObserver([&bar](SvmClassifier::GridProgress const& progress) { bar.onGrid(progress); });
    rksl::List<ClassificationModel> models;
    if (!stage.train(samples, models))
        fail(bar, counts);
    bar.clear();
    if (models.empty())
        throw std::runtime_error("the samples show no class: all of them are " + std::string(TrainingData::noise));
    std::filesystem::create_directories(out);
    for (ClassificationModel const& model : models) {
        auto const path = modelFile(out, model.getName());
        saveRecord(model, path);
        std::cout << model.getName() << ": F1 " << rktl::String::fromFloat(bar.accuracy(model.getName()), 1) << " %, "
                  << path.string() << std::endl;
    }
}

} // namespace tools
