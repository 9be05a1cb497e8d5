#pragma once

#include "BaseClasses/ProcessParams.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"
#include "trackers/SvmClassification/ClassificationModel.h"

/// Parameters of SvmClassification: its models by name. A model that is not valid stands for a file: its name is the path.
/// Fields of a subclass that stand behind these survive a round trip.
///
/// Binary form: a stream of the models and the required classes, then the fields of a subclass. In XML they travel only through
/// classXmlSerialize: elements "ModelPaths" of "path", "Models", and "RequiredClasses" of "class".
class ClassificationParams : public ProcessParams {
public:
    using Models = rksl::StringMap<ClassificationModel>;
    using Names = rksl::Set<rktl::String>;

    ClassificationParams() = default;
    /// name: type and name.
    ClassificationParams(rktl::String const& name, bool enabled, Models const& models = {});

    Models const& getModels() const { return mModels; }
    /// Adds or replaces.
    void setModel(rktl::String const& name, ClassificationModel const& model) { mModels[name] = model; }
    void removeModel(rktl::String const& name) { mModels.erase(name); }
    void clearModels() { mModels.clear(); }
    /// Names of the models that are not valid.
    Names getUnknownModels() const;

    /// Classes that whoever made the parameters relies on.
    Names const& getRequiredClasses() const { return mRequiredClasses; }
    void setRequiredClasses(Names const& classes) { mRequiredClasses = classes; }

    /// Takes over the params of the stage; false, with some of the fields, when neither of their forms can be read.
    bool assign(ProcessParams const& params) { return assignFrom(params); }

    rksl::MemIOStream binSerialize() const override;
    bool binUnserialize(rksl::MemIOStream const& stream) override;
    rktl::String xmlSerialize() const override; ///< ""
    bool xmlUnserialize(rktl::String const& xml) override;
    rktl::String classXmlSerialize() const;

private:
    Models mModels;
    Names mRequiredClasses;
    bool mExtended = false; // what was read held more than the fields of this class
};
