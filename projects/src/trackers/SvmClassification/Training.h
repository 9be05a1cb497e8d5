#pragma once

#include "misc/rktl_String.h"
#include "plugin/rkpl_Schemes.h"
#include "streams/rksl_List.h"
#include "sync/rkst_Vault.h"
#include "trackers/SvmClassification/ClassificationModel.h"
#include "trackers/SvmClassification/TrainingData.h"

/// A stage that makes models out of samples. Training runs on the caller's thread and for as long as it takes; the caller keeps
/// it apart from the frames.
class Training : public rkpl::Schemes {
public:
    static constexpr char const* identifier = "{F7382F53-454C-4f39-A255-4DF7DF5B5EE1}";

    ~Training() noexcept override { }

    /// Hears how a training comes along, on the thread that trains.
    class Listener {
    public:
        virtual ~Listener() = default;
        /// progress: 0 to 1, and -1 with text "Error: ..." when the training failed. step: of steps, both 0 for a failure.
        virtual void onTrainingProgress(char const* text, float progress, unsigned int step, unsigned int steps) = 0;
    };

    /// Not owned; null for none. False, and as before, when a training holds the listener for more than 15 s.
    bool setTrainingListener(Listener* listener) { return mListener.assign(listener, listenerLimit); }

    void getSchemes(rksl::StringMap<rktl::Integer>& schemes) override { schemes[getTrainingType()] = 1; }
    virtual rktl::String getTrainingType() const = 0;
    virtual rktl::String getTrainingDTD() const { return {}; }

    /// Empties models and fills it with one model for each class. False: the listener has heard why.
    virtual bool train(rktl::String const&, rksl::List<ClassificationModel>&) { return false; }
    virtual bool train(rksl::List<TrainingData> const&, rksl::List<ClassificationModel>&) { return false; }
    virtual ClassificationModel retrain(ClassificationModel const&, rksl::List<TrainingData> const&)
    {
        return ClassificationModel();
    }

protected:
    static constexpr unsigned int listenerLimit = 15000; // ms

    void reportTrainingProgress(char const* text, float progress, unsigned int step, unsigned int steps)
    {
        auto const listener = mListener.getWritePtr(listenerLimit);
        if (listener && *listener)
            (*listener)->onTrainingProgress(text, progress, step, steps);
    }

    rkst::Vault<Listener*> mListener{nullptr};
};
