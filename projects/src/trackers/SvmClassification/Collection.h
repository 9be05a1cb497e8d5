#pragma once

#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"
#include "streams/rksl_List.h"
#include "trackers/SvmClassification/TrainingData.h"

/// A stage that collects samples for training from the objects of its frames.
class Collection : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{7207013E-24A7-4ac3-A04B-17623102F82D}";
    static constexpr unsigned int withBackground = 0x100; ///< flag: samples of the empty scene too

    virtual rktl::String getCollectionType() const = 0;
    /// Drops the samples of an earlier collection; does nothing while one runs. flags: 0 or withBackground.
    virtual bool startDataCollection(unsigned int flags) = 0;
    virtual bool stopDataCollection() = 0;
    virtual bool isCollectingData() const = 0;
    /// Hands the samples over, leaving none. They have no class yet.
    virtual rksl::List<TrainingData> queryTrainingData() = 0;
};
