#include "trackers/SvmClassification/SvmClassifier.h"

#include "trackers/SvmClassification/ParallelScores.h"
#include "trackers/SvmClassification/SvmParameters.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <set>
#include <sstream>

namespace {

constexpr uint32_t leastElements = 30;
constexpr int folds = 5;
constexpr float perfect = 99.9f; // F1 in percent above which no better point is looked for
constexpr float leastAccuracy = 10.0f;
constexpr std::array<int, 6> costExponents = {-3, -1, 1, 3, 5, 7};
constexpr std::array<int, 4> gammaExponents = {3, 1, -1, -3};

/// A sample with a name and its records.
struct Labelled {
    rktl::String name;
    rksl::List<ObjectFeatures> records;
};

/// Those of the samples that have a name, in their order.
std::vector<Labelled> readLabelled(rksl::List<TrainingData> const& data)
{
    std::vector<Labelled> samples;
    for (TrainingData const& sample : data)
        if (!sample.mClassName.empty())
            samples.push_back({sample.mClassName, sample.readFeatures()});
    return samples;
}

/// Records in all; 0 when there are not at least two names.
uint32_t totalTrainingElements(std::vector<Labelled> const& samples)
{
    std::set<rktl::String> names;
    size_t total = 0;
    for (Labelled const& sample : samples) {
        names.insert(sample.name);
        total += sample.records.size();
    }
    return names.size() < 2 ? 0 : static_cast<uint32_t>(total);
}

struct GridPoint {
    double cost;
    double gamma;
};

GridPoint gridPoint(size_t index)
{
    return {std::exp2(costExponents[index / gammaExponents.size()]), std::exp2(gammaExponents[index % gammaExponents.size()])};
}

rktl::String gridOptions(GridPoint const& point, float weight)
{
    return rktl::String::fromFormat("-c %f -b 1 -g %f -v 5 -w %f", point.cost, point.gamma, double(weight));
}

} // namespace

bool SvmClassifier::setEnabledFeatures(std::vector<int32_t> const& ids)
{
    if (ids.empty())
        return false;
    mEnabledFeatures.clear();
    for (int32_t const id : ids)
        mEnabledFeatures.push_back({.id = id});
    return true;
}

bool SvmClassifier::setSVMStruct(rksl::List<TrainingData> const& data, std::vector<int32_t> const& featureIds)
{
    setEnabledFeatures(featureIds);
    std::vector<Labelled> const samples = readLabelled(data);
    uint32_t const total = totalTrainingElements(samples);
    if (total < leastElements)
        return false;
    for (Labelled const& sample : samples)
        for (ObjectFeatures const& features : sample.records)
            setFeatureRange(features);
    for (size_t i = 0; i < mEnabledFeatures.size(); ++i)
        if (svm_range const& range = mEnabledFeatures[i]; range.width() <= 0)
            std::printf("Enabled Feature %d with id %d has max of %f and min of %f", static_cast<int>(i), range.id,
                double(range.max), double(range.min));
    mClassifiers.clear();
    for (TrainingData const& sample : data)
        if (rktl::String const& name = sample.mClassName; name != TrainingData::noise && !mClassifiers.count(name))
            mClassifiers.try_emplace(name, name, 1).first->second.initialize(total, mEnabledFeatures);
    std::vector<svm_node> nodes(mEnabledFeatures.size() + 1);
    uint32_t index = 0;
    for (Labelled const& sample : samples) {
        for (auto& [name, classifier] : mClassifiers)
            classifier.setClassValue(sample.name == name ? 1 : -1);
        for (ObjectFeatures const& features : sample.records) {
            makeTrainingElement(nodes, features);
            for (auto& [name, classifier] : mClassifiers)
                classifier.insertTrainingElement(nodes.data(), index);
            ++index;
        }
    }
    return true;
}

void SvmClassifier::setFeatureRange(ObjectFeatures const& features)
{
    for (svm_range& range : mEnabledFeatures) {
        int32_t const value = features.getFeatureVal(range.id);
        range.min = std::min(range.min, value);
        range.max = std::max(range.max, value);
    }
}

/// Scales each feature to -1 to 1; one that never varies is 0.
void SvmClassifier::makeTrainingElement(std::vector<svm_node>& nodes, ObjectFeatures const& features) const
{
    auto node = nodes.begin();
    for (svm_range const& range : mEnabledFeatures) {
        auto const width = static_cast<float>(range.width());
        auto const offset = static_cast<float>(int64_t(features.getFeatureVal(range.id)) - range.min);
        *node++ = {range.id, width > 0.000001f ? 2.0f * offset / width - 1.0f : 0.0f};
    }
    *node = {-1, 0};
}

bool SvmClassifier::trainSVM(Training::Listener* listener, rktl::String& report)
{
    double const step = 1.0 / (2.0 * static_cast<double>(mClassifiers.size()));
    double progress = 0;
    for (auto& [name, classifier] : mClassifiers)
        if (!trainClass(classifier, listener, progress, step, report))
            return false;
    shareVectors();
    return true;
}

/// The best point of the grid, and the machine there. progress goes on by step with each.
bool SvmClassifier::trainClass(
    SubClassifier& classifier, Training::Listener* listener, double& progress, double step, rktl::String& report)
{
    double cost = 8.0, gamma = 1.0;
    float accuracy = 0, weight = 1.0f;
    rktl::String const text = rktl::String::fromFormat("Training %s model...", classifier.getName().c_str());
    auto const tell = [&] {
        if (listener)
            listener->onTrainingProgress(text.c_str(), static_cast<float>(progress), 2, 2);
    };
    auto const note = [&](std::ostringstream const& line) {
        report += line.str();
        log(rktl::LogType::Info, line.str());
    };
    tell();
    if (!findOptimalParams(classifier, cost, gamma, accuracy, weight, report))
        return false;
    std::ostringstream found;
    found << "\nEnabled Features: " << mEnabledFeatures.size() << ", Max Accuracy: " << accuracy << " best C:" << cost
          << " best G:" << gamma << " Cost Positives: " << weight << "\n";
    note(found);
    progress += step;
    tell();
    SvmParameters const parameters(rktl::String::fromFormat("-c %f -b 1 -g %f -w %f", cost, gamma, double(weight)));
    if (!classifier.trainClass(parameters))
        return false;
    svm_model const& model = classifier.getModel().getModel();
    for (int i = 0; i < model.nr_class; ++i) {
        std::ostringstream vectors;
        vectors << "  Class " << model.label[i] << " : sv " << model.nSV[i] << "\n";
        note(vectors);
    }
    progress += step;
    return true;
}

/// The grid point with the best F1 under cross-validation, the first one of equals. False when the class lacks samples of
/// either kind or no point is of use.
bool SvmClassifier::findOptimalParams(
    SubClassifier const& classifier, double& cost, double& gamma, float& accuracy, float& weight, rktl::String& report) const
{
    char const* const name = classifier.getName().c_str();
    int const positives = classifier.getProblem().getNumPositives(), negatives = classifier.getProblem().getNumNegatives();
    accuracy = 0;
    report = rktl::String::fromFormat("%s model creation: Positive Samples %d, Negative Samples %d", name, positives, negatives);
    if (positives == 0 || negatives == 0) {
        report = rktl::String::fromFormat("Need at least one training sample of each type for class %s. Positive Samples : %d, "
                                          "Negative Samples : %d",
            name, positives, negatives);
        return false;
    }
    weight = static_cast<float>(negatives) / static_cast<float>(positives);
    GridPoint best = {1, 1};
    constexpr size_t points = costExponents.size() * gammaExponents.size();
    auto const score = [&](size_t index) {
        return classifier.do_cross_validation(SvmParameters(gridOptions(gridPoint(index), weight)), folds);
    };
    auto const take = [&](size_t index, float found) {
        GridPoint const point = gridPoint(index);
        if (!(found > 0))
            report +=
                rktl::String::fromFormat(" \n%d fold cross validation failed for class %s. Cost is %f, gamma is %f, w is %f",
                    folds, name, point.cost, point.gamma, double(weight));
        if (found > accuracy) {
            accuracy = found;
            best = point;
        }
        if (mGridObserver)
            mGridObserver({classifier.getName(), static_cast<unsigned int>(index + 1), points, accuracy});
        return !(accuracy > perfect);
    };
    scoreInOrder(points, score, take);
    cost = best.cost;
    gamma = best.gamma;
    return accuracy >= leastAccuracy;
}
