#pragma once

#include "BaseClasses/VideoProcess.h"
#include "trackers/SvmClassification/Classification.h"
#include "trackers/SvmClassification/Collection.h"
#include "trackers/SvmClassification/SvmClassifier.h"
#include "trackers/SvmClassification/Training.h"

#include <vector>

/// The stage that says what objects are, and that collects samples and trains models for it. Frames come on the frame thread.
/// The other operations come from whoever holds the interface and have no lock against frames: samples are handed over in one
/// operation on their list, and the caller keeps training and changes of models apart from the frames.
class SvmClassification : public Classification, public Collection, public Training, public VideoProcess {
public:
    SvmClassification();

    bool supports(char const* wanted, rkpl::Plugin** result) override;
    void release() override { delete this; }

    // ---- Classification
    rksl::Set<rktl::String> getClassNames() const override { return mClassifier.getClassNames(); }
    rktl::String getModelType() const override { return "SVM"; }
    bool getModel(char const* name, ClassificationModel& model) override;
    bool setModel(ClassificationModel const& model) override { return mClassifier.setModel(model); }
    bool clearModels() override;
    bool testImage(rkil::MultiImage const& image, rksl::StringMap<rktl::Double>& scores) override;
    bool testImage(rkil::MultiImage const& image, rkil::MultiImage const& mask, rksl::StringMap<rktl::Double>& scores) override;

    /// 0 to 1: an object whose class has reached it is settled, and costs no more than a look-up per frame.
    void setConfidenceThreshold(double threshold) { mClassifier.setMinConfidence(threshold); }

    /// See SvmClassifier::getObjectInfo.
    ObjectInfo const* getObjectInfo(uint32_t id) const { return mClassifier.getObjectInfo(id); }

    // ---- Collection
    rktl::String getCollectionType() const override { return "SVM"; }
    bool startDataCollection(unsigned int flags) override;
    bool stopDataCollection() override;
    bool isCollectingData() const override { return mCollecting; }
    rksl::List<TrainingData> queryTrainingData() override { return mClassifier.extractTrainingData(); }

    /// Makes samples of what the living objects have left so far, as if they had gone: for the end of a recording.
    void collectRemaining();
    void setSampleObserver(SvmClassifier::SampleObserver observer) { mClassifier.setSampleObserver(std::move(observer)); }

    // ---- Training
    rktl::String getTrainingType() const override { return "SVM"; }
    using Training::train;
    bool train(rksl::List<TrainingData> const& data, rksl::List<ClassificationModel>& models) override;
    void setGridObserver(SvmClassifier::GridObserver observer) { mClassifier.setGridObserver(std::move(observer)); }

    // ---- VideoProcess
    rktl::String getProcessType() const override { return "SvmClassification"; }
    ProcessParams getDefaultParameters() const override;
    void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const override;
    void setLogger(rktl::Logger* logger) override;
    void resetProcess() override;

protected:
    bool onProcessFrame(ProcessFrame& frame) override;
    /// A ClassificationParams. False, with the models before it set, at the first that cannot be had.
    bool onSetParameters(ProcessParams const& params) override;

private:
    bool loadModel(rktl::String const& path);
    bool trainModels(rksl::List<TrainingData> const& data, rktl::String& error);

    bool mCollecting = false;
    std::vector<int32_t> mFeatureIds; // given to the classifier
    SvmClassifier mClassifier;
};
