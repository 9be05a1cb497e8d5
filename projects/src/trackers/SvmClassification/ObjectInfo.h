#pragma once

#include "image/rkil_FlatImage.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_List.h"
#include "streams/rksl_StringMap.h"
#include "trackers/SvmClassification/ObjectFeatures.h"

#include <cstdint>
#include <optional>

/// What is collected of one object for training.
struct DataUnit {
    rkil::FlatImage<4> mMontage;             ///< of the patches; made when the sample is
    rksl::List<rkil::FlatImage<4>> mPatches; ///< crops of the object, one for each frame on which it was classified
    rksl::List<ObjectFeatures> mFeatures;    ///< parallel to mPatches
    rktl::ElapsedTime mAge;                  ///< of the object at the last patch
};

/// What the votes of an object say so far, with classes named as their models are.
struct Verdict {
    rktl::String mClass;
    rksl::StringMap<rktl::Double> mConfidences;
};

/// The classifier's memory of one object over all frames.
struct ObjectInfo {
    virtual ~ObjectInfo() = default;

    /// Confidence summed per class, named as its model is, or "unknown" for frames on which no class voted.
    rksl::StringMap<rktl::Double> mClassHistogram;
    double mTotalWeight = 0; ///< sum of all that was added to mClassHistogram
    DataUnit mData;
    bool mSeen = false;              ///< from the second look-up on
    bool mCollected = false;         ///< mData became a sample when the object merged or stood still
    uint32_t mVotes = 0;             ///< frames on which a vote was cast
    std::optional<Verdict> mVerdict; ///< kept until something above changes
};
