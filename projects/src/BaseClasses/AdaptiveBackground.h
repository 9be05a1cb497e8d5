#pragma once

#include "math/rkml_BoundingBox.h"
#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"

class ProcessFrame;

/// A plug-in that judges whether a static object is a false one, such as a shadow or the place that something has left.
class AdaptiveBackground : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{E4DFF553-CBB7-4bab-8401-CBFA25555354}";

    /// type: of the object. box: in pixels of the frame. margin: pixels around the box that belong to its surroundings.
    /// True: score says how false the box looks, 0 to 1. False: no answer.
    virtual bool falseScore(
        ProcessFrame const& frame, rktl::String const& type, rkml::BoundingBox<int> const& box, int margin, float& score) = 0;
};
