#pragma once

#include "trackers/SvmClassification/RbfKernel.h"
#include "trackers/SvmClassification/svm_range.h"

#include <cstddef>
#include <libsvm/svm.h>
#include <vector>

/// Support vectors of machines that look at the same features through the same kernel, in dense rows, eight side by side, so
/// that the kernel is worked out for eight at once, each in libsvm's order of operations and to its last bit.
class SvmVectors {
public:
    SvmVectors(svm_ranges const& ranges, svm_parameter const& kernel);

    /// Whether machines of these ones and those ones may share: same ranges, and a kernel of the same kind and numbers.
    bool isLike(SvmVectors const& other) const;

    svm_ranges const& ranges() const { return mRanges; }
    svm_parameter const& kernel() const { return mKernel; }
    size_t features() const { return mRanges.size(); }
    size_t size() const { return mCount; }
    /// One value for each feature.
    std::vector<double> row(size_t place) const;
    void add(std::vector<double> const& row);

    /// kernels becomes the kernel of each vector and the input, which has a value for each feature.
    void evaluate(double const* input, std::vector<double>& kernels) const;

private:
    static constexpr size_t lanes = RbfKernel::lanes; // support vectors side by side

    double const* block(size_t first) const { return &mBlocks[first * mRanges.size()]; }
    void evaluate(RbfKernel::Run run, size_t first, size_t count, double const* input, double* kernels) const;
    void evaluate(size_t first, size_t count, double const* input, double* kernels) const;
    void compare(double const* block, double const* input, double* results) const;
    double kernelOf(double result) const;

    svm_ranges mRanges;
    svm_parameter mKernel;
    size_t mCount = 0;
    std::vector<double> mBlocks; // of `lanes` vectors each: their first features, their second ones, and so on
};
