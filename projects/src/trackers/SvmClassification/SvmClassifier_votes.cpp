#include "trackers/SvmClassification/SvmClassifier.h"

#include "misc/rktl_Exception.h"

#include <cmath>

namespace {

constexpr char const* modelType = "SVM";
constexpr char const* unknown = "unknown"; // in the histogram: what no class claims
constexpr char const* undecided = "none";
constexpr double leastWeight = 2.0; // votes below which nothing is said
constexpr double leastLead = 0.1;   // of the best class before the second

bool saysNothing(ObjectInfo const& info)
{
    return info.mClassHistogram.empty() || info.mTotalWeight < leastWeight;
}

void add(ObjectInfo& info, rktl::String const& name, double confidence)
{
    info.mClassHistogram[name] = info.mClassHistogram[name] + confidence;
    info.mTotalWeight += confidence;
}

} // namespace

// ---- Votes

ObjectInfo const* SvmClassifier::getObjectInfo(uint32_t id) const
{
    auto const entry = mObjects.find(static_cast<int32_t>(id));
    return entry == mObjects.end() ? nullptr : &entry->second;
}

/// Each class that says yes votes with its confidence. When none does, the mean confidence of their noes goes to "unknown".
void SvmClassifier::updateClassHistogram(ObjectInfo& info) const
{
    if (mClassifiers.empty())
        return;
    float negatives = 0;
    bool anyVoted = false;
    for (auto const& [name, classifier] : mClassifiers) {
        if (classifier.getPredicted() > 0) {
            add(info, name, classifier.getPositiveConfidence());
            anyVoted = true;
        } else {
            negatives = static_cast<float>(negatives + classifier.getNegativeConfidence());
        }
    }
    if (!anyVoted)
        add(info, unknown, negatives / static_cast<float>(mClassifiers.size()));
    ++info.mVotes;
    info.mVerdict.reset();
}

rktl::String SvmClassifier::computeClassID(ObjectInfo const& info)
{
    if (saysNothing(info))
        return undecided;
    constexpr double lowest = -2147483648.0;
    double best = lowest, second = lowest;
    rktl::String name;
    for (auto const& [key, value] : info.mClassHistogram) {
        if (value > best) {
            second = best;
            best = value;
            name = key;
        } else if (value > second) {
            second = value;
        }
    }
    return best - second < leastLead ? rktl::String(undecided) : name;
}

rksl::StringMap<rktl::Double> SvmClassifier::getNormalizedConfidences(ObjectInfo const& info)
{
    rksl::StringMap<rktl::Double> confidences;
    if (!info.mSeen || saysNothing(info))
        return confidences;
    for (auto const& [name, sum] : info.mClassHistogram)
        confidences[name] = info.mVotes ? std::sqrt(sum / info.mVotes) : 0.0;
    return confidences;
}

bool SvmClassifier::getClassScore(ObjectFeatures const& features, rksl::StringMap<rktl::Double>& scores) const
{
    scores.clear();
    for (auto const& [name, classifier] : mClassifiers)
        if (classifier.getModel().isInitialised())
            scores[name] = double(classifier.getClassScore(features));
    return !scores.empty();
}

// ---- Models

rksl::Set<rktl::String> SvmClassifier::getClassNames() const
{
    rksl::Set<rktl::String> names;
    for (auto const& [name, classifier] : mClassifiers)
        names.insert(name);
    return names;
}

bool SvmClassifier::setModel(ClassificationModel const& model)
{
    if (model.getName() == TrainingData::noise)
        return true;
    SvmModel machine;
    try {
        model.getData().peek(machine);
    } catch (std::exception const&) {
        return false;
    }
    if (machine.isInitialised() && !machine.givesProbabilities())
        return false;
    mClassifiers.try_emplace(model.getName(), model.getName(), 1).first->second.setModel(machine);
    shareVectors();
    return true;
}

void SvmClassifier::shareVectors()
{
    std::vector<SubClassifier*> classes;
    for (auto& [name, classifier] : mClassifiers)
        classes.push_back(&classifier);
    SubClassifier::share(classes);
}

ClassificationModel SvmClassifier::getModel(rktl::String const& name) const
{
    auto const classifier = mClassifiers.find(name);
    if (classifier == mClassifiers.end())
        return ClassificationModel();
    SvmModel const& machine = classifier->second.getModel();
    return ClassificationModel(modelType, name, machine, machine.isInitialised());
}
