#pragma once

#include "BaseClasses/ProcessParams.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Set.h"

/// Parameters of SvmClassification: the paths of the model files, one class each.
class ClassificationParams : public ProcessParams {
public:
    ClassificationParams()
        : ProcessParams("SvmClassification")
    {
    }

    void setModel(rktl::String const& path) { mModels.insert(path); }
    rksl::Set<rktl::String> const& getModels() const { return mModels; }

private:
    rksl::Set<rktl::String> mModels;
};
