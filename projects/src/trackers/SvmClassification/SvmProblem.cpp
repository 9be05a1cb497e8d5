#include "trackers/SvmClassification/SvmProblem.h"

#include <algorithm>
#include <cmath>

namespace {

int32_t countLabel(std::vector<double> const& labels, double wanted)
{
    return static_cast<int32_t>(
        std::count_if(labels.begin(), labels.end(), [wanted](double label) { return std::fabs(label - wanted) < 0.001; }));
}

} // namespace

SvmProblem::SvmProblem(rktl::String const& name)
    : mName(name)
{
}

SvmProblem::SvmProblem(uint32_t count, uint32_t numFeatures)
    : mLabels(count)
    , mNodes(size_t(count) * (size_t(numFeatures) + 1))
    , mRows(count)
    , mNodesEach(numFeatures + 1)
{
    link();
}

SvmProblem::SvmProblem(SvmProblem const& other)
    : mLabels(other.mLabels)
    , mNodes(other.mNodes)
    , mRows(other.mRows.size())
    , mNodesEach(other.mNodesEach)
    , mName(other.mName)
{
    link();
}

SvmProblem& SvmProblem::operator=(SvmProblem const& other)
{
    mLabels = other.mLabels;
    mNodes = other.mNodes;
    mRows.resize(other.mRows.size());
    mNodesEach = other.mNodesEach;
    mName = other.mName;
    link();
    return *this;
}

void SvmProblem::link()
{
    for (size_t i = 0; i < mRows.size(); ++i)
        mRows[i] = mNodes.data() + i * mNodesEach;
    mView = {static_cast<int>(mLabels.size()), mLabels.data(), mRows.data()};
}

void SvmProblem::insertElement(svm_node const* nodes, uint32_t index, int32_t label)
{
    mLabels[index] = label;
    std::copy_n(nodes, mNodesEach, mRows[index]);
}

int32_t SvmProblem::getNumPositives() const
{
    return countLabel(mLabels, 1.0);
}

int32_t SvmProblem::getNumNegatives() const
{
    return countLabel(mLabels, -1.0);
}
