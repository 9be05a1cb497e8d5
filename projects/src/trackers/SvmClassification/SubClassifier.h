#pragma once

#include "misc/rktl_String.h"
#include "trackers/SvmClassification/SvmDecision.h"
#include "trackers/SvmClassification/SvmModel.h"
#include "trackers/SvmClassification/SvmProblem.h"
#include "trackers/SvmClassification/svm_range.h"

#include <cstdint>
#include <vector>

class ObjectFeatures;
class SvmParameters;

/// One class of objects: the two-class machine that tells it from everything else, and its training. Predictions use a scratch
/// input that is kept between frames; all operations but getClassScore belong to one thread at a time.
class SubClassifier {
public:
    SubClassifier() = default;
    /// classValue: label of the sample in hand, +1 or -1.
    SubClassifier(rktl::String const& name, int32_t classValue);
    virtual ~SubClassifier() = default;

    rktl::String const& getName() const { return mName; }
    SvmModel const& getModel() const { return mSubModel.mModel; }
    SvmProblem const& getProblem() const { return mSubModel.mProblem; }

    /// Takes a copy of the model, and its ranges.
    void setModel(SvmModel const& model);

    /// Predicts. Without a model the label is -1 and both confidences are 0; always true.
    bool setResults(ObjectFeatures const& features);
    /// The same, with what the machines of several classes share for these features.
    bool setResults(ObjectFeatures const& features, SvmDecision::Kernels& kernels);

    /// Last label that was predicted; above 0 the machine says yes.
    int32_t getPredicted() const { return mSubModel.mPredicted; }

    // Probabilities of the last prediction, 0 to 1: of the class labelled +1, and of the other. 0 when there are not two.
    double getPositiveConfidence() const;
    double getNegativeConfidence() const;

    /// The probability of the class for these features, 0 without a model. Changes nothing: may run beside other threads.
    float getClassScore(ObjectFeatures const& features) const;

    /// Has classes hold equal support vectors once. Undone for a class by its next model.
    static void share(std::vector<SubClassifier*> const& classes);

    // ---- Training

    /// A training set of count samples of these features, to be filled in.
    void initialize(uint32_t count, svm_ranges const& ranges);
    /// Label of the samples inserted from now on, +1 or -1.
    void setClassValue(int32_t value) { mClassValue = value; }
    /// nodes: one for each range, and one that ends them. index: below count.
    void insertTrainingElement(svm_node const* nodes, uint32_t index);
    /// False when libsvm refuses the parameters (which is told on standard error) or finds no support vectors.
    bool trainClass(SvmParameters const& parameters);
    /// F1 of the class in percent: the harmonic mean of precision and recall over all samples, each predicted by a machine that
    /// has not seen it. 0 for an empty training set.
    float do_cross_validation(SvmParameters const& parameters, int32_t folds) const;

private:
    struct SubModel {
        virtual ~SubModel() = default;

        void setRanges(svm_ranges const& ranges);
        bool scaleFeatures(ObjectFeatures const& features, svm_node* nodes, size_t count) const;
        double predict(svm_node const* nodes, double* probabilities, SvmDecision::Kernels& kernels) const;
        bool isPositiveSecond() const;
        bool trainSubModel(SvmParameters const& parameters);
        float do_sub_validation(SvmParameters const& parameters, int32_t folds) const;

        SvmModel mModel;
        SvmDecision mDecision; // of mModel and mRanges; not prepared where the library is to be asked
        SvmProblem mProblem;
        svm_ranges mRanges;
        rktl::String mName;
        int32_t mUpper = 1; // ends of the scaled range
        int32_t mLower = -1;
        std::vector<svm_node> mNodes; // scratch: one for each range, and the end
        int32_t mPredicted = 0;
        double mProbabilities[2] = {}; // in the order of the machine's labels
    };

    rktl::String mName;
    int32_t mClassValue = 1;
    SubModel mSubModel;
};
