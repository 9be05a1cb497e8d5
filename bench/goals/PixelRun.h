#pragma once

#include "goals/Samples.h"

#include <cstdint>
#include <string>

/// Times of every candidate on the same frames of one video at one size. In each frame all candidates run, each time another one
/// first, so that none always finds the frame in the cache.
struct PixelRun {
    Samples copy; // memcpy of one frame
    Samples motion, compare, morphology, components, update;
    Samples pipeline; // the four stages before the update
    Samples plain;    // the same in plain forms
    Samples learning; // pipeline and update
    Samples peer, peerSubtraction, countingPeer;

    PixelRun(std::string const& video, uint32_t width, uint32_t height);
};
