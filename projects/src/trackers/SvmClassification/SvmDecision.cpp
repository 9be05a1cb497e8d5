#include "trackers/SvmClassification/SvmDecision.h"

#include "trackers/SvmClassification/SvmModel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

using Pair = double __attribute__((vector_size(2 * sizeof(double)))); // what the narrowest of vector units holds
using Block = std::array<Pair, 4>;
using Quad = float __attribute__((vector_size(4 * sizeof(float))));
using QuadInteger = int32_t __attribute__((vector_size(4 * sizeof(float))));
using QuickBlock = std::array<Quad, 2>;

constexpr float leastExponent = -120.0f; // of 2; kernels below are estimated as if they were this

// What the sum of the estimated terms errs by, as a share of the sum of their sizes. A feature more rounds each exponent, which
// is 120 at most, by 2^-24 of it; 61 features and the scaling are below 70 such steps, so below 6e-4. The polynomial adds 3e-6,
// the adding up 2^-24 for each vector. Rounded up generously, as it costs nothing.
constexpr double kernelError = 2e-3;
constexpr double addingError = 2e-7; // for each vector
constexpr double surelyApart = 0.1;  // of log odds, beyond which the library's rounding cannot turn the label
constexpr double decisionError = 1e-9;

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

/// 2 to the power of exponents from -120 to 127: the whole part goes into the bits of the exponent, the rest, within half,
/// through the Taylor series of the fifth order.
Quad powerOfTwo(Quad const& exponent)
{
    constexpr float toWhole = 12582912.0f; // 1.5 * 2^23: a sum with it is rounded to whole numbers
    constexpr int32_t wholeBits = 0x4b400000, bias = 127, mantissaBits = 23;
    Quad const whole = exponent + toWhole;
    Quad const rest = exponent - (whole - toWhole);
    Quad series = rest * 0.00133336f + 0.00961813f;
    for (float const coefficient : {0.0555041f, 0.240227f, 0.693147f, 1.0f})
        series = series * rest + coefficient;
    QuadInteger bits;
    std::memcpy(&bits, &whole, sizeof(bits));
    bits = (bits - (wholeBits - bias)) << mantissaBits;
    Quad scale;
    std::memcpy(&scale, &bits, sizeof(scale));
    return series * scale;
}

bool isFloat(double value)
{
    return static_cast<double>(static_cast<float>(value)) == value;
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
    mFeatures = ranges.size();
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
    prepareEstimate();
}

/// Only for vectors that are floats, as all scaled ones are, and widths with which no exponent is lost to the range of floats.
void SvmDecision::prepareEstimate()
{
    constexpr double leastGamma = 1e-20, mostGamma = 1e20;
    bool const isInRange = mParam.kernel_type == RBF && mParam.gamma >= leastGamma && mParam.gamma <= mostGamma;
    if (!isInRange || !std::all_of(mBlocks.begin(), mBlocks.end(), isFloat))
        return;
    mQuickBlocks.assign(mBlocks.begin(), mBlocks.end());
    mQuickCoefficients.assign(mBlocks.size() / mFeatures, 0);
    for (size_t i = 0; i < mVectors; ++i) {
        mQuickCoefficients[i] = static_cast<float>(mCoefficients[i]);
        mSlack += std::fabs(mCoefficients[i]) * std::exp2(double(leastExponent) + 1);
    }
}

int32_t SvmDecision::sureLabel(svm_node const* input) const
{
    constexpr size_t mostFeatures = 61;
    if (mQuickBlocks.empty() || mFeatures > mostFeatures)
        return 0;
    std::array<float, mostFeatures> values;
    for (size_t i = 0; i < mFeatures; ++i) {
        values[i] = static_cast<float>(input[i].value);
        if (!isFloat(input[i].value))
            return 0;
    }
    auto const toExponent = static_cast<float>(-mParam.gamma * std::numbers::log2e);
    float const* row = mQuickBlocks.data();
    QuickBlock sums = {}, sizes = {};
    for (size_t first = 0; first < mQuickCoefficients.size(); first += lanes) {
        QuickBlock distances = {}, coefficients;
        for (size_t feature = 0; feature < mFeatures; ++feature, row += lanes) {
            QuickBlock vectors;
            std::memcpy(&vectors, row, sizeof(vectors));
            for (size_t i = 0; i < vectors.size(); ++i) {
                Quad const difference = values[feature] - vectors[i];
                distances[i] += difference * difference;
            }
        }
        std::memcpy(&coefficients, &mQuickCoefficients[first], sizeof(coefficients));
        for (size_t i = 0; i < distances.size(); ++i) {
            Quad const exponent = distances[i] * toExponent;
            Quad const term = coefficients[i] * powerOfTwo(exponent < leastExponent ? Quad{} + leastExponent : exponent);
            sums[i] += term;
            sizes[i] += term < 0.0f ? -term : term;
        }
    }
    double sum = 0, size = 0;
    for (size_t i = 0; i < lanes; ++i) {
        sum += double(sums[i / 4][i % 4]);
        size += double(sizes[i / 4][i % 4]);
    }
    // The library's sigmoid: above 0 speaks for the second label. No number at all is never sure.
    double const logOdds = mProbA * (sum - mRho) + mProbB;
    double const error = std::fabs(mProbA) * (size * (kernelError + addingError * double(mVectors)) + mSlack) +
        decisionError * (std::fabs(mProbA) * (std::fabs(sum) + std::fabs(mRho)) + std::fabs(mProbB));
    if (logOdds > surelyApart + error)
        return mLabels[1];
    return logOdds < -surelyApart - error ? mLabels[0] : 0;
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
    double sum = 0;
    for (size_t first = 0; first < mVectors; first += lanes) {
        double values[lanes];
        compare(&mBlocks[first * mFeatures], input, values);
        size_t const count = std::min(lanes, mVectors - first);
        for (size_t i = 0; i < count; ++i)
            values[i] = kernelOf(values[i]);
        for (size_t i = 0; i < count; ++i)
            sum += mCoefficients[first + i] * values[i];
    }
    return sum;
}

/// The squared distance of each vector of a block from the input, or their product, as the kernel asks.
void SvmDecision::compare(double const* block, svm_node const* input, double* results) const
{
    auto const walk = [&](auto term) {
        Block sums = {};
        for (size_t feature = 0; feature < mFeatures; ++feature, block += lanes) {
            Block row;
            std::memcpy(&row, block, sizeof(row));
            for (size_t i = 0; i < row.size(); ++i)
                sums[i] += term(input[feature].value, row[i]);
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
