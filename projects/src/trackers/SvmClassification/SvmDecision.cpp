#include "trackers/SvmClassification/SvmDecision.h"

#include "trackers/SvmClassification/ObjectFeatures.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <numeric>

namespace {

/// Places of the nodes of a row among the features, which ascend; nothing when the nodes do not ascend or are of other features.
bool placeNodes(svm_ranges const& ranges, svm_node const* row, std::vector<double>& values)
{
    values.assign(ranges.size(), 0); // what the library passes over adds 0, or the square of the input, either way
    auto range = ranges.begin();
    for (; row->index != -1; ++row, ++range) {
        range = std::find_if(range, ranges.end(), [row](svm_range const& r) { return r.id == row->index; });
        if (range == ranges.end())
            return false;
        values[static_cast<size_t>(range - ranges.begin())] = row->value;
    }
    return true;
}

/// By bits: there is an order of all numbers then, and two zeros differ.
struct BitOrder {
    bool operator()(std::vector<double> const& a, std::vector<double> const& b) const
    {
        return std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) < 0;
    }
};

} // namespace

SvmDecision::SvmDecision(SvmModel const& model)
{
    svm_ranges const& ranges = model.getRanges(); // which ascend, so that there are no more than there are features
    bool const ascend = std::adjacent_find(ranges.begin(), ranges.end(),
                            [](svm_range const& a, svm_range const& b) { return a.id >= b.id; }) == ranges.end();
    if (!model.isInitialised() || !model.givesProbabilities() || ranges.empty() || !ascend || model.getModel().l == 0)
        return;
    svm_model const& machine = model.getModel();
    auto vectors = std::make_shared<SvmVectors>(ranges, machine.param);
    std::vector<double> values;
    for (int32_t i = 0; i < machine.l; ++i) {
        if (!placeNodes(ranges, machine.SV[i], values))
            return;
        vectors->add(values);
    }
    mPlaces.resize(vectors->size());
    std::iota(mPlaces.begin(), mPlaces.end(), 0u);
    mCoefficients.assign(machine.sv_coef[0], machine.sv_coef[0] + machine.l);
    mType = machine.param.svm_type;
    mRho = machine.rho[0];
    mProbA = machine.probA[0];
    mProbB = machine.probB[0];
    std::copy_n(machine.label, mLabels.size(), mLabels.begin());
    mVectors = vectors;
}

void SvmDecision::share(std::vector<SvmDecision*> const& machines)
{
    std::vector<SvmDecision*> rest;
    std::copy_if(machines.begin(), machines.end(), std::back_inserter(rest), [](auto* machine) { return machine->isPrepared(); });
    while (!rest.empty()) {
        std::shared_ptr<SvmVectors const> const first = rest.front()->mVectors;
        auto const others = std::stable_partition(
            rest.begin(), rest.end(), [&](SvmDecision* machine) { return machine->mVectors->isLike(*first); });
        auto shared = std::make_shared<SvmVectors>(first->ranges(), first->kernel());
        std::map<std::vector<double>, uint32_t, BitOrder> known;
        std::for_each(rest.begin(), others, [&](SvmDecision* machine) {
            for (uint32_t& place : machine->mPlaces) {
                auto const [entry, isNew] =
                    known.try_emplace(machine->mVectors->row(place), static_cast<uint32_t>(shared->size()));
                if (isNew)
                    shared->add(entry->first);
                place = entry->second;
            }
            machine->mVectors = shared;
        });
        rest.erase(rest.begin(), others);
    }
}

/// Hands the library a machine whose only support vector is 1, with the coefficient 1 and a linear kernel: asked about the sum,
/// it takes that for its own.
double SvmDecision::predict(svm_node const* input, double* probabilities, Kernels& kernels) const
{
    svm_node vector[] = {{1, 1.0}, {-1, 0}};
    svm_node* vectors = vector;
    double coefficient = 1.0;
    double* coefficients = &coefficient;
    double rho = mRho, probA = mProbA, probB = mProbB;
    std::array<int32_t, 2> labels = mLabels, counts = {1, 0};
    svm_model machine = {};
    machine.param.svm_type = mType;
    machine.param.kernel_type = LINEAR;
    machine.nr_class = 2;
    machine.l = 1;
    machine.SV = &vectors;
    machine.sv_coef = &coefficients;
    machine.rho = &rho;
    machine.probA = &probA;
    machine.probB = &probB;
    machine.label = labels.data();
    machine.nSV = counts.data();
    svm_node const sum[] = {{1, sumOf(input, kernels)}, {-1, 0}};
    return svm_predict_probability(&machine, sum, probabilities);
}

/// Of the kernel's values, each times its coefficient, one after the other.
double SvmDecision::sumOf(svm_node const* input, Kernels& kernels) const
{
    if (!hasAllFrom(kernels)) {
        std::array<double, ObjectFeatures::highestFeature> values;
        for (size_t i = 0; i < mVectors->features(); ++i)
            values[i] = input[i].value;
        mVectors->evaluate(values.data(), kernels.mValues);
        kernels.mVectors = mVectors;
    }
    double sum = 0;
    for (size_t i = 0; i < mPlaces.size(); ++i)
        sum += mCoefficients[i] * kernels.mValues[mPlaces[i]];
    return sum;
}
