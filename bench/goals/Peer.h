#pragma once

#include "image/rk_image.h"

#include <memory>

/// What a user would otherwise put together from OpenCV, on one thread: a background subtractor, an opening and a closing with a
/// square of 3 by 3, and the regions. Without OpenCV nothing is there to measure.
class Peer {
public:
    virtual ~Peer() = default;
    virtual void subtract(rk_image const& frame) = 0;
    virtual void findRegions() = 0;

    /// A mixture of Gaussians without shadows, connectedComponentsWithStats. Null without OpenCV.
    static std::unique_ptr<Peer> mixture();
    /// The fastest public combination: the counting subtractor of the contributed modules, findContours. Null without them.
    static std::unique_ptr<Peer> counting();
};
