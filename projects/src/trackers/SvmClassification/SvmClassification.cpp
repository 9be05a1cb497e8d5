#include "trackers/SvmClassification/SvmClassification.h"

#include "BaseClasses/ObjectMap.h"
#include "image/rkil_MultiImage.h"
#include "trackers/SvmClassification/ClassificationParams.h"

#include <numeric>

namespace {

constexpr int32_t firstFeature = 10; // the twelve counters of the first cell of directions
constexpr size_t featureCount = 12;

} // namespace

SvmClassification::SvmClassification()
    : mFeatureIds(featureCount)
{
    std::iota(mFeatureIds.begin(), mFeatureIds.end(), firstFeature);
    mClassifier.setEnabledFeatures(mFeatureIds);
}

bool SvmClassification::supports(char const* wanted, rkpl::Plugin** result)
{
    return answers<Classification>(this, wanted, result) || answers<Collection>(this, wanted, result) ||
        answers<Training>(this, wanted, result) || answers<rkpl::Schemes>(this, wanted, result) ||
        VideoProcess::supports(wanted, result);
}

// ---- Classification

bool SvmClassification::getModel(char const* name, ClassificationModel& model)
{
    model = mClassifier.getModel(name);
    return true;
}

bool SvmClassification::clearModels()
{
    mClassifier.clearModels();
    return true;
}

bool SvmClassification::testImage(rkil::MultiImage const& image, rksl::StringMap<rktl::Double>& scores)
{
    scores.clear();
    if (!image.getForm(rkil::MultiImage::flatGray))
        return false;
    rkil::FlatImage<1> all;
    if (!all.resize(image.getWidth(), image.getHeight(), 255))
        return false;
    rkil::MultiImage mask(rkil::MultiImage::flatGray);
    mask.swapData(*all.getImage());
    return testImage(image, mask, scores);
}

bool SvmClassification::testImage(
    rkil::MultiImage const& image, rkil::MultiImage const& mask, rksl::StringMap<rktl::Double>& scores)
{
    scores.clear();
    if (!image.getForm(rkil::MultiImage::flatGray) || !mask.getForm(rkil::MultiImage::flatGray))
        return false;
    ObjectFeatures features;
    return features.generateFeatures(image.getFlatGray(), mask.getFlatGray()) && mClassifier.getClassScore(features, scores);
}

// ---- Collection

bool SvmClassification::startDataCollection(unsigned int flags)
{
    if (mCollecting)
        return true;
    mClassifier.extractTrainingData();
    mCollecting = true;
    if (flags & withBackground)
        mClassifier.startBkgCollection();
    return true;
}

bool SvmClassification::stopDataCollection()
{
    mCollecting = false;
    mClassifier.stopBkgCollection();
    return true;
}

void SvmClassification::collectRemaining()
{
    mClassifier.cleanObjects(ObjectMap(), mCollecting);
}

// ---- Training

bool SvmClassification::train(rksl::List<TrainingData> const& data, rksl::List<ClassificationModel>& models)
{
    models.clear();
    rktl::String error;
    bool trained = false;
    try {
        trained = trainModels(data, error);
    } catch (std::exception const& exception) {
        error = exception.what();
    }
    if (!trained) {
        reportTrainingProgress(rktl::String("Error: " + error).c_str(), -1.0f, 0, 0);
        return false;
    }
    reportTrainingProgress("Models successfuly trained.", 1.0f, 2, 2);
    for (rktl::String const& name : mClassifier.getClassNames())
        models.push_back(mClassifier.getModel(name));
    return true;
}

bool SvmClassification::trainModels(rksl::List<TrainingData> const& data, rktl::String& error)
{
    reportTrainingProgress("Setting global features...", 0.0f, 1, 2);
    if (!mClassifier.setSVMStruct(data, mFeatureIds))
        return false;
    reportTrainingProgress("Training Models...", 0.0f, 2, 2);
    auto const listener = mListener.getWritePtr(listenerLimit); // so that it cannot go under way
    return mClassifier.trainSVM(listener ? *listener : nullptr, error);
}

// ---- VideoProcess

ProcessParams SvmClassification::getDefaultParameters() const
{
    return ClassificationParams(getProcessType(), true);
}

void SvmClassification::getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const
{
    types["Native-Scaled"] = rkil::MultiImage::flatColour | rkil::MultiImage::flatGray;
    types["Processed Image"] = rkil::MultiImage::flatGray;
    types["Stationary Object Processed"] = rkil::MultiImage::flatGray;
}

void SvmClassification::setLogger(rktl::Logger* logger)
{
    mClassifier.setLogger(logger);
    VideoProcess::setLogger(logger);
}

void SvmClassification::resetProcess()
{
    mClassifier.cleanObjects(ObjectMap(), false);
}

bool SvmClassification::onProcessFrame(ProcessFrame& frame)
{
    return mClassifier.process(frame, mCollecting);
}

bool SvmClassification::onSetParameters(ProcessParams const& params)
try {
    ClassificationParams classification;
    if (!classification.assign(params))
        return false;
    clearModels();
    for (auto const& [name, model] : classification.getModels()) {
        if (!model.isValid()) {
            if (!loadModel(name))
                return false;
        } else if (!setModel(model)) {
            log(rktl::LogType::Error, "Unable to set classification model:  %s", name.c_str());
            return false;
        }
    }
    return true;
} catch (std::exception const&) {
    return false;
}

bool SvmClassification::loadModel(rktl::String const& path)
{
    log(rktl::LogType::Info, "Loading model:  %s", path.c_str());
    ClassificationModel model;
    if (model.fromFile(path.c_str()) && model.isValid() && setModel(model))
        return true;
    log(rktl::LogType::Error, "Unable to load classification model:  %s", path.c_str());
    return false;
}
