#pragma once

#include "support/FrameJson.h"
#include "support/RgbImage.h"

class Direction;

namespace tools {

/// A picture of an alarm for a person: the frame with the box and the path of each of its objects, the sector of headings that
/// alarm from where the part of the path that the rule looks at begins, and below it what happened, in words. Small frames are
/// enlarged.
/// rule: whose heading is shown; null for none. number: of the alarm, from 1.
RgbImage drawSnapshot(FrameResult const& result, Event const& event, Direction const* rule, uint64_t number);

} // namespace tools
