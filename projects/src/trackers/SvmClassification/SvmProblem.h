#pragma once

#include "misc/rktl_String.h"

#include <cstdint>
#include <libsvm/svm.h>
#include <vector>

/// A training set of one machine: samples of the same features, each with its label. What libsvm calls an svm_problem, with its
/// storage, so that the samples are written once and used in place.
class SvmProblem {
public:
    explicit SvmProblem(rktl::String const& name = {});
    /// All labels and nodes 0.
    SvmProblem(uint32_t count, uint32_t numFeatures);
    SvmProblem(SvmProblem const& other);
    SvmProblem& operator=(SvmProblem const& other);
    virtual ~SvmProblem() = default;

    /// Stores the label and copies numFeatures + 1 nodes, the last of which ends them with the index -1.
    /// index: below the count.
    void insertElement(svm_node const* nodes, uint32_t index, int32_t label);

    // How many labels are within 0.001 of +1 and of -1.
    int32_t getNumPositives() const;
    int32_t getNumNegatives() const;

    bool isEmpty() const { return mLabels.empty(); }
    std::vector<double> const& labels() const { return mLabels; }

    /// Good until the problem changes.
    svm_problem const& view() const { return mView; }

private:
    void link();

    std::vector<double> mLabels;
    std::vector<svm_node> mNodes; // samples one behind the other
    std::vector<svm_node*> mRows; // into mNodes
    uint32_t mNodesEach = 0;      // features and the end
    rktl::String mName;
    svm_problem mView = {};
};
