#pragma once

#include "math/rkml_Polygon2d.h"
#include "misc/rktl_String.h"

#include <cstdint>

/// A line or an outline that a person has to see to understand a rule.
struct SpyShape {
    rktl::String label;              ///< what it is: "zone", "line"
    rkml::Polygon2D<float> points{}; ///< as configured, normalised or in pixels; two make a line, more an outline
    int32_t way = 0;                 ///< of a line: the side to end on, as LineCrossing::Way; 0 for both
};
