#pragma once

#include "support/FrameJson.h"
#include "support/RgbImage.h"

class FrameEventSpy;

namespace tools {

/// A picture of an alarm for a person: the frame with what the rule is made of (zones, lines; for a heading the sector that
/// alarms, from where the part of the path that the rule looks at begins), with the box and the path of each of the event's
/// objects, and below it what happened and why, in words. Objects that have gone are drawn as the event last saw them. Small
/// frames are enlarged.
/// rule: that raised it; null for an unknown one. number: of the alarm, from 1.
RgbImage drawSnapshot(FrameResult const& result, Event const& event, FrameEventSpy const* rule, uint64_t number);

} // namespace tools
