#pragma once

#include "misc/rktl_String.h"

#include <libsvm/svm.h>

/// Parameters of a training run of libsvm, with the two weights that they point to.
class SvmParameters {
public:
    /// A C-SVC with a radial basis function, and libsvm's own defaults.
    SvmParameters();
    /// Those, changed by options in the letters of libsvm's svm-train: "-c 8.0 -g 0.5". "-w" is the weight of label +1; that of
    /// label -1 becomes 1. "-v" has no effect. All values are positive: minus signs only introduce letters.
    explicit SvmParameters(rktl::String const& options);
    SvmParameters(SvmParameters const&) = delete;
    SvmParameters& operator=(SvmParameters const&) = delete;

    operator svm_parameter const&() const { return mParameter; }

private:
    void set(char letter, double value);

    int mLabels[2] = {1, -1};
    double mWeights[2] = {1.0, 1.0};
    svm_parameter mParameter = {};
};
