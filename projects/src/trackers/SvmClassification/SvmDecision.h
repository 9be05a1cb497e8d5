#pragma once

#include "trackers/SvmClassification/SvmVectors.h"

#include <array>
#include <cstdint>
#include <libsvm/svm.h>
#include <memory>
#include <vector>

class SvmModel;

/// A two-class machine made ready to be asked often: its answers are those of svm_predict_probability, to the last bit, in about
/// a tenth of the time. The kernels are SvmVectors' work, and may serve several machines; what turns the decision into
/// probabilities and a label is left to the library.
///
/// Asking changes nothing of it, so that several threads may ask, each with Kernels of its own.
class SvmDecision {
public:
    /// What was worked out for one input. Whoever asks several machines about it hands the same to all of them.
    class Kernels {
    public:
        /// To be called before the next input.
        void forget() { mVectors.reset(); }

    private:
        friend SvmDecision;

        std::shared_ptr<SvmVectors const> mVectors; // null: nothing is known
        std::vector<double> mValues;                // one for each vector
    };

    /// Not prepared.
    SvmDecision() = default;

    /// Prepared, unless the model is no machine, gives no probabilities, or its features or the nodes of a support vector do not
    /// ascend: then the order in which the library adds up is another, and the library is to be asked.
    explicit SvmDecision(SvmModel const& model);

    bool isPrepared() const { return mVectors != nullptr; }

    /// Has machines that look at the same features through the same kernel hold equal support vectors once: those of classes that
    /// were trained on the same samples are equal in part.
    static void share(std::vector<SvmDecision*> const& machines);

    /// The label. input: a node for each range of the model, in their order; not looked at by a machine that has all it needs.
    /// probabilities: two, in the order of the labels.
    double predict(svm_node const* input, double* probabilities, Kernels& kernels) const;
    /// Whether a machine with the same features was asked about this input before.
    bool hasAllFrom(Kernels const& kernels) const { return isPrepared() && kernels.mVectors == mVectors; }

private:
    double sumOf(svm_node const* input, Kernels& kernels) const;

    int32_t mType = 0;
    std::shared_ptr<SvmVectors const> mVectors;
    std::vector<uint32_t> mPlaces; // of this machine's vectors, in its order
    std::vector<double> mCoefficients;
    double mRho = 0;
    double mProbA = 0;
    double mProbB = 0;
    std::array<int32_t, 2> mLabels = {};
};
