#include "trackers/SvmClassification/SvmDecision.h"

#include "image/rk_row.h"
#include "trackers/SvmClassification/ObjectFeatures.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

using Pair = double __attribute__((vector_size(2 * sizeof(double)))); // what the narrowest of vector units holds
using Block = std::array<Pair, 4>;

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

/// By squaring, as the library does it.
double power(double base, int exponent)
{
    double result = 1.0;
    for (; exponent > 0; exponent /= 2, base *= base)
        if (exponent % 2 == 1)
            result *= base;
    return result;
}

/// For the form in use of the loops over pixels; null for the plain one.
RbfKernel::Run rbfRun()
{
    switch (rk_row().form) {
    case rk_form_plain:
        return nullptr;
    case rk_form_avx2:
        return RbfKernel::avx2;
    default:
        return RbfKernel::portable;
    }
}

} // namespace

SvmDecision::SvmDecision(SvmModel const& model)
{
    svm_ranges const& ranges = model.getRanges();
    bool const ascend = std::adjacent_find(ranges.begin(), ranges.end(),
                            [](svm_range const& a, svm_range const& b) { return a.id >= b.id; }) == ranges.end();
    if (!model.isInitialised() || !model.givesProbabilities() || !ascend)
        return;
    svm_model const& machine = model.getModel();
    auto const vectors = static_cast<size_t>(machine.l);
    mFeatures = ranges.size(); // which ascend, so that there are no more than there are features
    mBlocks.assign((vectors + lanes - 1) / lanes * lanes * mFeatures, 0);
    std::vector<double> values;
    for (size_t i = 0; i < vectors; ++i) {
        if (!placeNodes(ranges, machine.SV[i], values))
            return;
        for (size_t feature = 0; feature < mFeatures; ++feature)
            mBlocks[(i / lanes * mFeatures + feature) * lanes + i % lanes] = values[feature];
    }
    mCoefficients.assign(machine.sv_coef[0], machine.sv_coef[0] + vectors);
    mParam = machine.param;
    mRho = machine.rho[0];
    mProbA = machine.probA[0];
    mProbB = machine.probB[0];
    std::copy_n(machine.label, mLabels.size(), mLabels.begin());
    mVectors = vectors;
}

/// Hands the library a machine whose only support vector is 1, with the coefficient 1 and a linear kernel: asked about the sum,
/// it takes that for its own.
double SvmDecision::predict(svm_node const* input, double* probabilities) const
{
    svm_node vector[] = {{1, 1.0}, {-1, 0}};
    svm_node* vectors = vector;
    double coefficient = 1.0;
    double* coefficients = &coefficient;
    double rho = mRho, probA = mProbA, probB = mProbB;
    std::array<int32_t, 2> labels = mLabels, counts = {1, 0};
    svm_model machine = {};
    machine.param.svm_type = mParam.svm_type;
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
    svm_node const sum[] = {{1, sumOf(input)}, {-1, 0}};
    return svm_predict_probability(&machine, sum, probabilities);
}

/// Of the kernel's values, each times its coefficient, one after the other.
double SvmDecision::sumOf(svm_node const* input) const
{
    RbfKernel::Run const run = mParam.kernel_type == RBF ? rbfRun() : nullptr;
    std::array<double, ObjectFeatures::highestFeature> values;
    for (size_t i = 0; i < mFeatures; ++i)
        values[i] = input[i].value;
    double sum = 0;
    for (size_t first = 0; first < mVectors; first += RbfKernel::most) {
        double kernels[RbfKernel::most];
        size_t const count = std::min(RbfKernel::most, mVectors - first);
        if (run)
            evaluate(run, first, count, values.data(), kernels);
        else
            evaluate(first, count, values.data(), kernels);
        for (size_t i = 0; i < count; ++i)
            sum += mCoefficients[first + i] * kernels[i];
    }
    return sum;
}

void SvmDecision::evaluate(RbfKernel::Run run, size_t first, size_t count, double const* input, double* kernels) const
{
    double exponents[RbfKernel::most];
    size_t const blocks = (count + lanes - 1) / lanes;
    uint64_t unsure = run(&mBlocks[first * mFeatures], blocks, input, mFeatures, -mParam.gamma, exponents, kernels);
    for (; unsure; unsure &= unsure - 1) {
        auto const i = static_cast<size_t>(std::countr_zero(unsure));
        kernels[i] = std::exp(exponents[i]);
    }
}

void SvmDecision::evaluate(size_t first, size_t count, double const* input, double* kernels) const
{
    for (size_t i = 0; i < count; i += lanes) {
        double results[lanes];
        compare(&mBlocks[(first + i) * mFeatures], input, results);
        for (size_t lane = 0; lane < std::min(lanes, count - i); ++lane)
            kernels[i + lane] = kernelOf(results[lane]);
    }
}

/// The squared distance of each vector of a block from the input, or their product, as the kernel asks.
void SvmDecision::compare(double const* block, double const* input, double* results) const
{
    auto const walk = [&](auto term) {
        Block sums = {};
        for (size_t feature = 0; feature < mFeatures; ++feature, block += lanes) {
            Block row;
            std::memcpy(&row, block, sizeof(row));
            for (size_t i = 0; i < row.size(); ++i)
                sums[i] += term(input[feature], row[i]);
        }
        std::memcpy(results, &sums, sizeof(sums));
    };
    if (mParam.kernel_type == RBF)
        walk([](double value, Pair const& pair) {
            Pair const difference = value - pair;
            return difference * difference;
        });
    else
        walk([](double value, Pair const& pair) { return value * pair; });
}

double SvmDecision::kernelOf(double result) const
{
    switch (mParam.kernel_type) {
    case RBF:
        return std::exp(-mParam.gamma * result);
    case POLY:
        return power(mParam.gamma * result + mParam.coef0, mParam.degree);
    case SIGMOID:
        return std::tanh(mParam.gamma * result + mParam.coef0);
    default:
        return result;
    }
}
