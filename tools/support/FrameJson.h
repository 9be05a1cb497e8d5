#pragma once

#include "BaseClasses/Event.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <vector>

class Frame;
class Object;
class ProcessFrame;

namespace tools {

using Json = nlohmann::ordered_json;

/// A frame as it left the pipeline.
struct FrameResult {
    uint64_t number = 0;        // from 0
    ProcessFrame const& frame;  // not owned
    bool colour = false;        // processed in colour
    bool failed = false;        // the pipeline gave up on it
    rksl::List<Event> events;   // new and changed ones
    std::vector<uint32_t> sent; // uids of those that the camera would have sent
};

/// frame, position_ms, time_ms (wall clock, since the epoch), width, height, colour, failed, attributes, regions, objects,
/// events, sent.
Json frameJson(FrameResult const& result);

/// A frame as a client gets it: frame (its number), position_ms, time_ms, attributes, objects.
Json receivedFrameJson(uint64_t number, Frame const& frame);

/// id, type, state, box and first_box [x, y, width, height] (box: null without a path), merges (ids that share the newest box),
/// age_ms, near_edge, classes (name to confidence, null without one), attributes.
Json objectJson(Object const& object);

/// uid, type, spy_type, subtitle, description, confidence (percent), start_ms, stop_ms (wall clock, since the epoch), status,
/// objects (ids).
Json eventJson(Event const& event);

/// The event with the frame, position_ms and time_ms at which it was reported in front.
Json eventLine(FrameResult const& result, Event const& event);

/// One line without its end. Text that is not UTF-8 is repaired.
std::string jsonLine(Json const& json);

/// Ids of the objects of an event under its own origin, ascending.
std::vector<uint32_t> objectIds(Event const& event);

} // namespace tools
