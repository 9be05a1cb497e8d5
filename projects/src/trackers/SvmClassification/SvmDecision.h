#pragma once

#include "trackers/SvmClassification/RbfKernel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <libsvm/svm.h>
#include <vector>

class SvmModel;

/// A two-class machine made ready to be asked often: its answers are those of svm_predict_probability, to the last bit, in about
/// an eighth of the time. The library walks lists of nodes, one support vector after the other; here the vectors stand in dense
/// rows, eight side by side, so that the kernel is worked out for eight at once, each in the library's order of operations. What
/// turns the decision into probabilities and a label is left to the library.
///
/// Owns all that it needs. Asking changes nothing, so that several threads may ask.
class SvmDecision {
public:
    /// Not prepared.
    SvmDecision() = default;

    /// Prepared, unless the model is no machine, gives no probabilities, or its features or the nodes of a support vector do not
    /// ascend: then the order in which the library adds up is another, and the library is to be asked.
    explicit SvmDecision(SvmModel const& model);

    bool isPrepared() const { return mVectors != 0; }

    /// The label. input: a node for each range of the model, in their order. probabilities: two, in the order of the labels.
    double predict(svm_node const* input, double* probabilities) const;

private:
    static constexpr size_t lanes = RbfKernel::lanes; // support vectors side by side

    double sumOf(svm_node const* input) const;
    void evaluate(RbfKernel::Run run, size_t first, size_t count, double const* input, double* kernels) const;
    void evaluate(size_t first, size_t count, double const* input, double* kernels) const;
    void compare(double const* block, double const* input, double* results) const;
    double kernelOf(double result) const;

    svm_parameter mParam = {};
    size_t mFeatures = 0;
    size_t mVectors = 0;
    std::vector<double> mBlocks; // of `lanes` vectors each: their first features, their second ones, and so on
    std::vector<double> mCoefficients;
    double mRho = 0;
    double mProbA = 0;
    double mProbB = 0;
    std::array<int32_t, 2> mLabels = {};
};
