#include "trackers/SvmClassification/SvmClassification.h"

bool SvmClassification::onProcessFrame(ProcessFrame&)
{
    return true; // no model, so nothing to say of any object
}

bool SvmClassification::onSetParameters(ProcessParams const&)
{
    log(rktl::LogType::Error, "Models are refused: this build has no classifier.");
    return false;
}
