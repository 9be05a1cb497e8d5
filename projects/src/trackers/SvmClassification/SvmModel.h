#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"
#include "trackers/SvmClassification/svm_range.h"

#include <cstdint>
#include <libsvm/svm.h>
#include <vector>

/// A trained two-class machine of libsvm with a binary form of this system's own, and the ranges that its input is scaled by.
/// Copies own all they hold.
///
/// Binary form: initialised (8 bits), F, weights, probability, classes n, support vectors L (32 bits each), name, F ranges of id,
/// min, max (32 bits each), kind, kernel, degree (32 bits), gamma, coef0, cache size, eps, C (64 bits), two weight labels (32
/// bits) and two weights (64 bits) where there are weights, nu, p (64 bits), shrinking (32 bits), L times F + 1 nodes of index
/// (32 bits) and value (64 bits), (n - 1) * L coefficients, rho of each of the P = n (n - 1) / 2 pairs, probA and probB of each
/// where probability is not 0 (64 bits each), n labels, n counts of support vectors, free_sv (32 bits each). There is no XML
/// form.
class SvmModel : public rksl::Serializable {
public:
    explicit SvmModel(rktl::String const& name = {});
    SvmModel(svm_model const& model, svm_ranges const& ranges, rktl::String const& name);
    SvmModel(SvmModel const& other);
    SvmModel& operator=(SvmModel const& other);

    /// Takes a deep copy of what libsvm trained on nodes of these ranges.
    void SetModel(svm_model const& model, svm_ranges const& ranges, rktl::String const& name);

    /// Drops the machine and its ranges; the name stays.
    void deInitModel();

    /// Whether there is a machine.
    bool isInitialised() const { return mInitialised; }

    /// Whether the machine tells how likely each class is: without that it cannot vote.
    bool givesProbabilities() const { return mModel.probA && mModel.probB; }

    rktl::String const& getName() const { return mName; }
    svm_ranges const& getRanges() const { return mRanges; }

    /// For libsvm's predictions. Good until this changes.
    svm_model const& getModel() const { return mModel; }

    unsigned int getTypeId() const override { return 30; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const*) const override; ///< ""
    bool fromXML(char const*) override { return false; }
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;

    /// Throws rktl::Exception, with the model as it was, for bytes that are not all there and for a machine that libsvm could not
    /// be asked safely: one that is not of two classes, one of them positive, that has no support vectors or counts that do not
    /// add up, a kernel or kind other than those that classify vectors, numbers that are not finite, feature ids outside 1 to 61.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    /// The arrays that mModel points into.
    struct Arrays {
        std::vector<int32_t> weightLabels;
        std::vector<double> weights;
        std::vector<svm_node> nodes;      // support vectors one behind the other
        std::vector<svm_node*> rows;      // into nodes
        std::vector<double> coefficients; // n - 1 rows
        std::vector<double*> coefficientRows;
        std::vector<double> rho;
        std::vector<double> probA;
        std::vector<double> probB;
        std::vector<int32_t> labels;
        std::vector<int32_t> counts;
    };

    uint64_t pairs() const { return uint64_t(mModel.nr_class) * static_cast<uint64_t>(mModel.nr_class - 1) / 2; }
    uint64_t nodesEach() const { return mRanges.size() + 1; }
    void initModel();
    void link();
    bool isSound() const;
    bool hasSoundNumbers() const;
    unsigned int readFields(unsigned char const* in, unsigned int length);

    rktl::String mName;
    svm_ranges mRanges;
    svm_model mModel = {};
    bool mInitialised = false;
    Arrays mArrays;
};
