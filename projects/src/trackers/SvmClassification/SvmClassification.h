#pragma once

#include "BaseClasses/VideoProcess.h"
#include "streams/rksl_Set.h"

/// The stage that says what an object is. This build has no classifier: the stage stays disabled, and refuses models.
class SvmClassification : public VideoProcess {
public:
    /// Names of the classes that the models tell apart, in order.
    rksl::Set<rktl::String> getClassNames() const { return {}; }

    /// 0 to 1: a class of less confidence does not count.
    void setConfidenceThreshold(double threshold) { mConfidenceThreshold = threshold; }
    double getConfidenceThreshold() const { return mConfidenceThreshold; }

    rktl::String getProcessType() const override { return "SvmClassification"; }
    void resetProcess() override { }

protected:
    bool onProcessFrame(ProcessFrame& frame) override;
    bool onSetParameters(ProcessParams const& params) override;

private:
    double mConfidenceThreshold = 0.5;
};
