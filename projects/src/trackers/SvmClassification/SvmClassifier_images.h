#pragma once

#include "trackers/SvmClassification/SvmClassifier.h"

/// The images of a frame that the walk over its objects looks at. Owned by the frame.
struct SvmClassifier::Images {
    rkil::MultiImage const& all;
    rkil::FlatImage<1> const& gray;
    rkil::FlatImage<1> const* moving;   // foreground of moving objects; null when the frame has none
    rkil::FlatImage<1> const* standing; // of standing ones
};
