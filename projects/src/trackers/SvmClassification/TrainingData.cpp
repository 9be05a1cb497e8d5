#include "trackers/SvmClassification/TrainingData.h"

TrainingData::TrainingData(
    rksl::Serializable const& features, int32_t number, rktl::String const& name, rktl::TimeStamp const& time)
    : mClassName(name)
    , mNumber(number)
    , mTime(time)
{
    mFeatures.write(features);
}

TrainingData::TrainingData(
    unsigned char const* features, unsigned int size, int32_t number, rktl::String const& name, rktl::TimeStamp const& time)
    : mFeatures(features, size)
    , mClassName(name)
    , mNumber(number)
    , mTime(time)
{
}

rksl::List<ObjectFeatures> TrainingData::readFeatures() const
{
    rksl::List<ObjectFeatures> features;
    mFeatures.peek(features);
    return features;
}

rktl::String TrainingData::getTypeName() const
{
    return "TrainingData";
}

void TrainingData::fillSerializable(rksl::MemberList& list, rksl::NamedMembers&)
{
    list.insert(list.end(), {&mPreview, &mTag, &mFeatures, &mClassName, &mNumber, &mTime});
}
