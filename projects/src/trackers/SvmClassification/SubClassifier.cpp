#include "trackers/SvmClassification/SubClassifier.h"

#include "trackers/SvmClassification/ObjectFeatures.h"
#include "trackers/SvmClassification/SvmParameters.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {

/// libsvm reports its progress on standard output, which belongs to others.
void silenceLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { svm_set_print_string_function([](char const*) {}); });
}

/// libsvm shuffles with rand(). Each run begins with the same draws, so that it gives the same on every day, and whatever ran
/// before it.
void beginRun()
{
    silenceLibrary();
    std::srand(1);
}

bool isPositive(double label)
{
    return std::fabs(label - 1.0) < 0.001;
}

double ratio(uint32_t part, uint32_t whole)
{
    return whole ? double(part) / whole : 0.0;
}

} // namespace

SubClassifier::SubClassifier(rktl::String const& name, int32_t classValue)
    : mName(name)
    , mClassValue(classValue)
{
    mSubModel.mName = name;
}

void SubClassifier::setModel(SvmModel const& model)
{
    silenceLibrary();
    mSubModel.mModel = model;
    mSubModel.setRanges(model.getRanges());
    mSubModel.mDecision = SvmDecision(mSubModel.mModel);
}

void SubClassifier::share(std::vector<SubClassifier*> const& classes)
{
    std::vector<SvmDecision*> decisions;
    for (SubClassifier* const one : classes)
        decisions.push_back(&one->mSubModel.mDecision);
    SvmDecision::share(decisions);
}

bool SubClassifier::setResults(ObjectFeatures const& features)
{
    SvmDecision::Kernels kernels;
    return setResults(features, kernels);
}

bool SubClassifier::setResults(ObjectFeatures const& features, SvmDecision::Kernels& kernels)
{
    SubModel& machine = mSubModel;
    if (!machine.mModel.isInitialised()) {
        machine.mPredicted = -1;
        machine.mProbabilities[0] = machine.mProbabilities[1] = 0;
        return true;
    }
    if (machine.mDecision.hasAllFrom(kernels) || machine.scaleFeatures(features, machine.mNodes.data(), machine.mNodes.size()))
        machine.mPredicted = static_cast<int32_t>(machine.predict(machine.mNodes.data(), machine.mProbabilities, kernels));
    return true;
}

float SubClassifier::getClassScore(ObjectFeatures const& features) const
{
    std::vector<svm_node> nodes(mSubModel.mRanges.size() + 1);
    if (!mSubModel.mModel.isInitialised() || !mSubModel.scaleFeatures(features, nodes.data(), nodes.size()))
        return 0;
    double probabilities[2] = {};
    SvmDecision::Kernels kernels;
    mSubModel.predict(nodes.data(), probabilities, kernels);
    return static_cast<float>(probabilities[mSubModel.isPositiveSecond() ? 1 : 0]);
}

double SubClassifier::getPositiveConfidence() const
{
    if (mSubModel.mModel.getModel().nr_class < 2)
        return 0;
    return mSubModel.mProbabilities[mSubModel.isPositiveSecond() ? 1 : 0];
}

double SubClassifier::getNegativeConfidence() const
{
    if (mSubModel.mModel.getModel().nr_class < 2)
        return 0;
    return mSubModel.mProbabilities[mSubModel.isPositiveSecond() ? 0 : 1];
}

void SubClassifier::initialize(uint32_t count, svm_ranges const& ranges)
{
    mSubModel.mProblem = SvmProblem(count, static_cast<uint32_t>(ranges.size()));
    mSubModel.setRanges(ranges);
}

void SubClassifier::insertTrainingElement(svm_node const* nodes, uint32_t index)
{
    mSubModel.mProblem.insertElement(nodes, index, mClassValue);
}

bool SubClassifier::trainClass(SvmParameters const& parameters)
{
    return mSubModel.trainSubModel(parameters);
}

float SubClassifier::do_cross_validation(SvmParameters const& parameters, int32_t folds) const
{
    return mSubModel.do_sub_validation(parameters, folds);
}

// ---- The machine

void SubClassifier::SubModel::setRanges(svm_ranges const& ranges)
{
    mRanges = ranges;
    mNodes.assign(ranges.size() + 1, {});
    mDecision = {};
}

/// Takes each feature from its range in training to mLower to mUpper; a feature that never varied becomes 0.
bool SubClassifier::SubModel::scaleFeatures(ObjectFeatures const& features, svm_node* nodes, size_t count) const
{
    if (mRanges.empty() || count != mRanges.size() + 1)
        return false;
    for (svm_range const& range : mRanges) {
        float scaled = 0;
        if (range.width() > 0)
            scaled = static_cast<float>(mLower) +
                static_cast<float>(mUpper - mLower) * static_cast<float>(int64_t(features.getFeatureVal(range.id)) - range.min) /
                    static_cast<float>(range.width());
        *nodes++ = {range.id, scaled};
    }
    *nodes = {-1, 0};
    return true;
}

double SubClassifier::SubModel::predict(svm_node const* nodes, double* probabilities, SvmDecision::Kernels& kernels) const
{
    return mDecision.isPrepared() ? mDecision.predict(nodes, probabilities, kernels)
                                  : svm_predict_probability(&mModel.getModel(), nodes, probabilities);
}

/// libsvm numbers the classes in the order in which it met their labels.
bool SubClassifier::SubModel::isPositiveSecond() const
{
    return mModel.getModel().label[0] < 1;
}

bool SubClassifier::SubModel::trainSubModel(SvmParameters const& parameters)
{
    svm_parameter const& parameter = parameters;
    if (char const* const error = svm_check_parameter(&mProblem.view(), &parameter)) {
        std::fprintf(stderr, "Error: %s\n", error);
        return false;
    }
    beginRun();
    svm_model* trained = svm_train(&mProblem.view(), &parameter);
    bool const hasVectors = trained && trained->l > 0;
    try {
        if (hasVectors)
            mModel.SetModel(*trained, mRanges, mName);
        else
            mModel.deInitModel();
        mDecision = SvmDecision(mModel);
    } catch (std::exception const&) {
        svm_free_and_destroy_model(&trained);
        return false;
    }
    if (trained)
        svm_free_and_destroy_model(&trained);
    return hasVectors;
}

float SubClassifier::SubModel::do_sub_validation(SvmParameters const& parameters, int32_t folds) const
{
    svm_parameter const& parameter = parameters;
    if (mProblem.isEmpty())
        return 0;
    beginRun();
    std::vector<double> const& truth = mProblem.labels();
    std::vector<double> predicted(truth.size());
    svm_cross_validation(&mProblem.view(), &parameter, folds, predicted.data());
    if (parameter.svm_type == EPSILON_SVR || parameter.svm_type == NU_SVR)
        return 0;
    uint32_t truePositives = 0, falsePositives = 0, falseNegatives = 0;
    for (size_t i = 0; i < truth.size(); ++i) {
        if (isPositive(predicted[i]))
            ++(isPositive(truth[i]) ? truePositives : falsePositives);
        else if (std::fabs(predicted[i] - truth[i]) >= 0.001)
            ++falseNegatives;
    }
    double const recall = ratio(truePositives, truePositives + falseNegatives);
    double const precision = ratio(truePositives, truePositives + falsePositives);
    if (!(recall + precision > 0.001))
        return 0;
    return static_cast<float>(200.0 * recall * precision / (recall + precision));
}
