#pragma once

#include "misc/rktl_Double.h"
#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

class ClassificationModel;
namespace rkil {
class MultiImage;
}

/// A stage that says what objects are, by models of classes.
class Classification : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{ED512152-DA9E-43b6-A7FE-352243634713}";

    virtual rksl::Set<rktl::String> getClassNames() const = 0;
    virtual rktl::String getModelType() const = 0;
    /// True also for a name that is not known, which gives an empty model.
    virtual bool getModel(char const* name, ClassificationModel& model) = 0;
    /// Adds the model or replaces that of its name. False when it is no model of this type.
    virtual bool setModel(ClassificationModel const& model) = 0;
    virtual bool clearModels() = 0;

    /// How likely the whole picture is to show each class, 0 to 1, by class. False when no class can tell.
    virtual bool testImage(rkil::MultiImage const& image, rksl::StringMap<rktl::Double>& scores) = 0;
    /// The same for the part of the picture where mask is not 0.
    virtual bool testImage(rkil::MultiImage const&, rkil::MultiImage const&, rksl::StringMap<rktl::Double>&) { return false; }
};
