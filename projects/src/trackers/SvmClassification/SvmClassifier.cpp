#include "trackers/SvmClassification/SvmClassifier.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rktl_Logger.h"
#include "trackers/SvmClassification/SvmClassifier_images.h"

namespace {

constexpr char const* movingType = "Moving";
constexpr char const* staticType = "Static";
constexpr double settledWeight = 12.0;   // votes below which no object is settled
constexpr int64_t leastStaticAge = 2000; // ms, of a standing object that is collected
constexpr int64_t longStaticAge = 15000; // ms, after which a standing object has shown all it will

rkil::FlatImage<1> const* grayOf(ProcessFrame const& frame, char const* name)
{
    return frame.isImageSet(name, rkil::MultiImage::flatGray) ? &frame.getMultiImage(name).getFlatGray() : nullptr;
}

} // namespace

void SvmClassifier::log(rktl::LogType type, rktl::String const& text) const
{
    if (mLogger)
        mLogger->log(type, text);
}

bool SvmClassifier::process(ProcessFrame& frame, bool collecting)
{
    rktl::String const imageName = frame.getScale() == 1.0 ? "Native Image" : "Native-Scaled";
    if (!frame.isImageSet(imageName, rkil::MultiImage::flatGray))
        return false;
    if (!frame.getObjects().empty())
        createObjFeatureMap(frame, imageName, collecting);
    if (collecting && mBkgCollecting)
        collectBackground(frame, imageName);
    return cleanObjects(frame.getObjects(), collecting);
}

void SvmClassifier::createObjFeatureMap(ProcessFrame& frame, rktl::String const& imageName, bool collecting)
{
    rkil::MultiImage const& image = frame.getMultiImage(imageName);
    Images const images = {
        image, image.getFlatGray(), grayOf(frame, "Processed Image"), grayOf(frame, "Stationary Object Processed")};
    for (auto& [id, object] : frame.getObjects())
        classify(object, images, collecting);
}

/// What one frame says of one object.
void SvmClassifier::classify(Object& object, Images const& images, bool collecting)
{
    bool const isStatic = object.getType() == staticType;
    if (collecting && (object.getMergeListSize() != 0 || (isStatic && object.age() < rktl::ElapsedTime(leastStaticAge))))
        return;
    rkil::FlatImage<1> const* mask = nullptr;
    if (isStatic && images.standing)
        mask = images.standing;
    else if (object.getType() == movingType)
        mask = images.moving;
    if (!mask)
        return;
    ObjectInfo& info = findObjectInfo(object.getId());
    ObjectFeatures features;
    bool const votes = !isSettled(info, judge(info)) && features.setFeatures(images.gray, *mask, object, isStatic);
    if (votes) {
        mKernels.forget();
        for (auto& [name, classifier] : mClassifiers)
            classifier.setResults(features, mKernels);
        updateClassHistogram(info);
    }
    writeBack(judge(info), object);
    if (votes && collecting)
        collect(object, features, images, info.mData);
}

ObjectInfo& SvmClassifier::findObjectInfo(uint32_t id)
{
    auto const [entry, isNew] = mObjects.try_emplace(static_cast<int32_t>(id));
    ObjectInfo& info = entry->second;
    if (!isNew && !info.mSeen) {
        info.mSeen = true;
        info.mVerdict.reset();
    }
    return info;
}

/// Of a settled object this is a look-up.
Verdict const& SvmClassifier::judge(ObjectInfo& info)
{
    if (!info.mVerdict)
        info.mVerdict = {computeClassID(info), getNormalizedConfidences(info)};
    return *info.mVerdict;
}

bool SvmClassifier::isSettled(ObjectInfo const& info, Verdict const& verdict) const
{
    if (mMinConfidence == -1.0 || info.mTotalWeight < settledWeight)
        return false;
    auto const confidence = verdict.mConfidences.find(verdict.mClass);
    return confidence != verdict.mConfidences.end() && confidence->second >= mMinConfidence;
}

void SvmClassifier::writeBack(Verdict const& verdict, Object& object)
{
    if (!verdict.mClass.empty())
        object.addClass(verdict.mClass);
    object.clearClassConfidences();
    for (auto const& [name, confidence] : verdict.mConfidences)
        object.setClassConfidence(name, confidence);
}

bool SvmClassifier::cleanObjects(ObjectMap const& objects, bool collecting)
{
    for (auto entry = mObjects.begin(); entry != mObjects.end();) {
        Object const* const object = objects.findObject(static_cast<uint32_t>(entry->first));
        if (object && object->getState() > Object::purged) {
            ++entry;
            continue;
        }
        if (collecting)
            insertData(entry->second.mData, false);
        entry = mObjects.erase(entry);
    }
    if (!collecting)
        return true;
    for (auto const& [id, object] : objects) {
        bool const stands = object.getType() == staticType && object.age() > rktl::ElapsedTime(longStaticAge);
        auto const entry = mObjects.find(id);
        if ((object.getMergeListSize() == 0 && !stands) || entry == mObjects.end() || entry->second.mCollected)
            continue;
        entry->second.mCollected = true;
        insertData(entry->second.mData, false);
    }
    return true;
}
