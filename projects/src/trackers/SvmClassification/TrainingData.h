#pragma once

#include "image/rkil_ImageJPEG.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemberRecord.h"
#include "streams/rksl_MemIOStream.h"
#include "trackers/SvmClassification/ObjectFeatures.h"

/// One sample: what was seen of one object over its life, and the class that a person gave it.
class TrainingData : public rksl::MemberRecord {
public:
    /// The class name of samples that show no class, and tag of those that were taken from the background.
    static constexpr char const* noise = "rk-noise";

    TrainingData() = default;
    /// features: a list of ObjectFeatures. name: the class, "" for none yet. time: when the sample was made.
    TrainingData(rksl::Serializable const& features, int32_t number, rktl::String const& name, rktl::TimeStamp const& time);
    /// features: the bytes of a stream that holds such a list. Throws rktl::Exception when they are no stream.
    TrainingData(
        unsigned char const* features, unsigned int size, int32_t number, rktl::String const& name, rktl::TimeStamp const& time);

    /// The records of the sample. Throws rktl::Exception when the stream holds none.
    rksl::List<ObjectFeatures> readFeatures() const;

    unsigned int getTypeId() const override { return 28; }
    rktl::String getTypeName() const override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

    rkil::ImageJPEG mPreview;    ///< the montage, where there is a codec
    rktl::String mTag;           ///< noise for a sample of the background
    rksl::MemIOStream mFeatures; ///< a list of ObjectFeatures
    rktl::String mClassName;     ///< "": not labelled
    rktl::Integer mNumber;       ///< free for whoever keeps samples; 0 at first
    rktl::TimeStamp mTime;       ///< when the sample was made

protected:
    char const* getClassName() const override { return "TrainingData"; }
};
