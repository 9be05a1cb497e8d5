#include "trackers/SvmClassification/SvmVectors.h"

#include "image/rk_row.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

using Pair = double __attribute__((vector_size(2 * sizeof(double)))); // what the narrowest of vector units holds
using Block = std::array<Pair, 4>;

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

SvmVectors::SvmVectors(svm_ranges const& ranges, svm_parameter const& kernel)
    : mRanges(ranges)
    , mKernel(kernel)
{
}

bool SvmVectors::isLike(SvmVectors const& other) const
{
    auto const isSame = [](svm_range const& a, svm_range const& b) { return a.id == b.id && a.min == b.min && a.max == b.max; };
    auto const isSameNumber = [](double a, double b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); };
    return std::ranges::equal(mRanges, other.mRanges, isSame) && mKernel.kernel_type == other.mKernel.kernel_type &&
        isSameNumber(mKernel.gamma, other.mKernel.gamma) &&
        (mKernel.kernel_type == RBF ||
            (isSameNumber(mKernel.coef0, other.mKernel.coef0) && mKernel.degree == other.mKernel.degree));
}

std::vector<double> SvmVectors::row(size_t place) const
{
    std::vector<double> values(features());
    for (size_t feature = 0; feature < values.size(); ++feature)
        values[feature] = block(place / lanes * lanes)[feature * lanes + place % lanes];
    return values;
}

void SvmVectors::add(std::vector<double> const& row)
{
    size_t const first = mCount / lanes * lanes;
    mBlocks.resize((first + lanes) * features());
    for (size_t feature = 0; feature < row.size(); ++feature)
        mBlocks[first * features() + feature * lanes + mCount % lanes] = row[feature];
    ++mCount;
}

void SvmVectors::evaluate(double const* input, std::vector<double>& kernels) const
{
    RbfKernel::Run const run = mKernel.kernel_type == RBF ? rbfRun() : nullptr;
    kernels.resize((mCount + RbfKernel::most - 1) / RbfKernel::most * RbfKernel::most);
    for (size_t first = 0; first < mCount; first += RbfKernel::most) {
        size_t const count = std::min(RbfKernel::most, mCount - first);
        if (run)
            evaluate(run, first, count, input, &kernels[first]);
        else
            evaluate(first, count, input, &kernels[first]);
    }
}

void SvmVectors::evaluate(RbfKernel::Run run, size_t first, size_t count, double const* input, double* kernels) const
{
    double exponents[RbfKernel::most];
    size_t const blocks = (count + lanes - 1) / lanes;
    uint64_t unsure = run(block(first), blocks, input, features(), -mKernel.gamma, exponents, kernels);
    for (; unsure; unsure &= unsure - 1) {
        auto const i = static_cast<size_t>(std::countr_zero(unsure));
        kernels[i] = std::exp(exponents[i]);
    }
}

void SvmVectors::evaluate(size_t first, size_t count, double const* input, double* kernels) const
{
    for (size_t i = 0; i < count; i += lanes) {
        double results[lanes];
        compare(block(first + i), input, results);
        for (size_t lane = 0; lane < std::min(lanes, count - i); ++lane)
            kernels[i + lane] = kernelOf(results[lane]);
    }
}

/// The squared distance of each vector of a block from the input, or their product, as the kernel asks.
void SvmVectors::compare(double const* block, double const* input, double* results) const
{
    auto const walk = [&](auto term) {
        Block sums = {};
        for (size_t feature = 0; feature < features(); ++feature, block += lanes) {
            Block row;
            std::memcpy(&row, block, sizeof(row));
            for (size_t i = 0; i < row.size(); ++i)
                sums[i] += term(input[feature], row[i]);
        }
        std::memcpy(results, &sums, sizeof(sums));
    };
    if (mKernel.kernel_type == RBF)
        walk([](double value, Pair const& pair) {
            Pair const difference = value - pair;
            return difference * difference;
        });
    else
        walk([](double value, Pair const& pair) { return value * pair; });
}

double SvmVectors::kernelOf(double result) const
{
    switch (mKernel.kernel_type) {
    case RBF:
        return std::exp(-mKernel.gamma * result);
    case POLY:
        return power(mKernel.gamma * result + mKernel.coef0, mKernel.degree);
    case SIGMOID:
        return std::tanh(mKernel.gamma * result + mKernel.coef0);
    default:
        return result;
    }
}
