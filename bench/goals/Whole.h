#pragma once

#include "goals/Samples.h"

#include <cstdint>
#include <string>

/// SimpleTracker::process on a video on which 20 things shuttle to and fro, at 1280 x 720.
struct Whole {
    Samples process;
    Samples pipeline; // the pixel work alone, of the same frames
    double allocationsPerFrame = 0.0;
    double pipelineAllocationsPerFrame = 0.0;
    double objects = 0.0; // tracked at a time, on average: without them the rest would say nothing

    explicit Whole(std::string const& video);
};

/// Resident bytes a pixel of model, detector and images after some frames of 1920 x 1080.
double bytesPerPixel();

/// The colour comparison of 640 x 480: fastest form, plain form.
struct ColourCompare {
    Samples fast, plain;
    ColourCompare();
};
