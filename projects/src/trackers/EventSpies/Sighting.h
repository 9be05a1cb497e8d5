#pragma once

#include "math/rkml_BoundingBox.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"

#include <cstdint>

class Object;

/// What the rules ask of an object in a frame, side by side: it is worked out once and read by all spies.
struct Sighting {
    Sighting(uint32_t objectId, Object const& seen);

    Object const* object; ///< good as long as the frame's objects do not change
    uint32_t id;          ///< by which the frame knows it
    int32_t state;        ///< Object::State
    bool isStatic;        ///< of type "Static"
    bool hasPath;         ///< without one the object is nowhere, and what follows is 0
    rkml::BoundingBox<int> box;
    rkml::Point2D<int> centre;
    rkml::Point2D<int> firstCentre; ///< of the object's first box
    rktl::TimeStamp time;
    rktl::ElapsedTime age;
    double travel = 0.0;      ///< pixels, from the first box to the newest, centre to centre
    int32_t travelPixels = 0; ///< rounded
};
