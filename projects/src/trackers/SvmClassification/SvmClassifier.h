#pragma once

#include "image/rkil_FlatImage.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_LogType.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"
#include "trackers/SvmClassification/ClassificationModel.h"
#include "trackers/SvmClassification/ObjectInfo.h"
#include "trackers/SvmClassification/SubClassifier.h"
#include "trackers/SvmClassification/Training.h"
#include "trackers/SvmClassification/TrainingData.h"

#include <functional>
#include <map>

class Object;
class ObjectMap;
class ProcessFrame;
namespace rktl {
class Logger;
}

/// Decides what each tracked object is. One two-class machine per class votes on every frame on which an object gives usable
/// features; the votes build up over the object's life. The same walk over the objects collects samples, out of which the
/// machines are trained.
///
/// Class names are those of the models. TrainingData::noise names samples of no class and never has a model.
/// Belongs to the frame thread and has no lock: whoever trains or sets models keeps that apart from the frames.
class SvmClassifier {
public:
    SvmClassifier() = default;
    virtual ~SvmClassifier() = default;

    /// Not owned; may be null.
    void setLogger(rktl::Logger* logger) { mLogger = logger; }

    // ---- Frames (SvmClassifier.cpp)

    /// Updates the classes of the frame's objects. collecting: also keeps what they look like.
    /// False when the frame lacks the gray form of its image.
    bool process(ProcessFrame& frame, bool collecting);

    /// Forgets the objects that are not among these as tracked ones; when collecting, what they left becomes samples. Also takes
    /// the sample of an object that merged or stands still. Always true.
    bool cleanObjects(ObjectMap const& objects, bool collecting);

    /// Confidence at which an object counts as settled and is no longer classified; -1 for never.
    void setMinConfidence(double confidence) { mMinConfidence = confidence; }
    double getMinConfidence() const { return mMinConfidence; }

    // ---- Votes (SvmClassifier_votes.cpp)

    /// What the classifier knows of an object that is in the frame; null for nothing. Good until the next frame.
    ObjectInfo const* getObjectInfo(uint32_t id) const;

    /// The class with the most votes, "unknown", or "none" while there are too few or it is too close.
    static rktl::String computeClassID(ObjectInfo const& info);

    /// Root of the mean vote by class, 0 to 1; empty while the votes are too few.
    static rksl::StringMap<rktl::Double> getNormalizedConfidences(ObjectInfo const& info);

    /// scores becomes the probability of each class that has a model, 0 to 1. False when there is none.
    bool getClassScore(ObjectFeatures const& features, rksl::StringMap<rktl::Double>& scores) const;

    // ---- Models (SvmClassifier_votes.cpp)

    rksl::Set<rktl::String> getClassNames() const;
    /// Adds or replaces the machine of that class; a model of noise is passed over. False, and as before, when its data are no
    /// machine, or one that gives no probabilities.
    bool setModel(ClassificationModel const& model);
    /// Empty when there is no such class; not valid when its machine is not trained.
    ClassificationModel getModel(rktl::String const& name) const;
    void clearModels() { mClassifiers.clear(); }

    // ---- Samples (SvmClassifier_collection.cpp)

    /// Hears each sample that was made, with the montage of its crops.
    using SampleObserver = std::function<void(TrainingData const& sample, rkil::FlatImage<4> const& montage)>;
    void setSampleObserver(SampleObserver observer) { mSampleObserver = std::move(observer); }

    /// Cleans what was collected of an object and makes a sample of it, unless it is too short. background: it shows no object.
    /// False when too little is left of it.
    bool insertData(DataUnit& data, bool background);
    /// Hands the samples over.
    rksl::List<TrainingData> extractTrainingData();
    /// The next 12 frames give a sample of each cell of the picture, 6 by 4, that no object touches.
    void startBkgCollection();
    void stopBkgCollection();
    /// A strip of up to ten crops of one width, 60 pixels high. False for fewer than two patches.
    static bool createMontage(rkil::FlatImage<4>& target, rksl::List<rkil::FlatImage<4>> const& patches);

    // ---- Training (SvmClassifier_training.cpp)

    /// How far the grid search of one class has come.
    struct GridProgress {
        rktl::String className;
        unsigned int point = 0;  ///< points done
        unsigned int points = 0; ///< points of the grid; it may end sooner
        float accuracy = 0;      ///< best so far, F1 in percent
    };
    using GridObserver = std::function<void(GridProgress const& progress)>;
    void setGridObserver(GridObserver observer) { mGridObserver = std::move(observer); }

    /// The features to train on, by id. False for none.
    bool setEnabledFeatures(std::vector<int32_t> const& ids);
    /// Replaces all classes by those of the samples, each with a training set of all samples. featureIds: empty keeps those set.
    /// False for samples of fewer than two names or fewer than 30 records. Throws rktl::Exception for a sample that is none.
    bool setSVMStruct(rksl::List<TrainingData> const& data, std::vector<int32_t> const& featureIds);
    /// Trains the machines, each with the best point of a grid of cost and kernel width. listener: may be null.
    /// report: the text of the run, and why it failed.
    bool trainSVM(Training::Listener* listener, rktl::String& report);

protected:
    virtual void log(rktl::LogType type, rktl::String const& text) const;

private:
    struct Images;

    // Frames.
    void createObjFeatureMap(ProcessFrame& frame, rktl::String const& imageName, bool collecting);
    void classify(Object& object, Images const& images, bool collecting);
    ObjectInfo& findObjectInfo(uint32_t id);
    static Verdict const& judge(ObjectInfo& info);
    bool isSettled(ObjectInfo const& info, Verdict const& verdict) const;
    static void writeBack(Verdict const& verdict, Object& object);
    void updateClassHistogram(ObjectInfo& info) const;
    void shareVectors();

    // Samples.
    void collect(Object const& object, ObjectFeatures const& features, Images const& images, DataUnit& data) const;
    void collectBackground(ProcessFrame const& frame, rktl::String const& imageName);

    // Training.
    void setFeatureRange(ObjectFeatures const& features);
    void makeTrainingElement(std::vector<svm_node>& nodes, ObjectFeatures const& features) const;
    bool trainClass(SubClassifier& classifier, Training::Listener* listener, double& progress, double step, rktl::String& report);
    bool findOptimalParams(
        SubClassifier const& classifier, double& cost, double& gamma, float& accuracy, float& weight, rktl::String& report) const;

    rktl::Logger* mLogger = nullptr;
    std::map<int32_t, ObjectInfo> mObjects;
    rksl::List<TrainingData> mTrainingData;
    std::map<rktl::String, SubClassifier> mClassifiers;
    SvmDecision::Kernels mKernels; // scratch of the votes
    svm_ranges mEnabledFeatures;
    bool mBkgCollecting = false;
    uint32_t mBkgFrames = 0;
    std::vector<ObjectInfo> mBkgPatches; // cells of the picture, row by row
    rktl::Double mMinConfidence = -1.0;
    SampleObserver mSampleObserver;
    GridObserver mGridObserver;
};
