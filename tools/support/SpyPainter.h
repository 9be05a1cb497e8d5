#pragma once

#include "support/RgbImage.h"

class FrameEventSpy;

namespace tools {

/// Draws what a rule is made of onto a frame that was enlarged by scale: zones and regions as outlines with a light fill, lines
/// with an arrow for the side that they are crossed to (two arrows where both count).
void paintSpy(RgbImage& image, uint32_t scale, FrameEventSpy const& spy);

} // namespace tools
