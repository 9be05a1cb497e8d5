#include "support/FrameJson.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rktl_url.h"

namespace tools {

namespace {

Json boxJson(rkml::BoundingBox<int> const& box)
{
    return {box.x, box.y, box.width, box.height};
}

int64_t milliseconds(rktl::TimeStamp const& time)
{
    return int64_t(time.getSeconds()) * 1000 + time.getMilliseconds();
}

Json attributesJson(rktl::Attributes const& record)
{
    Json json = Json::object();
    for (auto const& [key, value] : record.getAttributes())
        json[key] = std::string(value);
    return json;
}

Json classesJson(Object const& object)
{
    Json json = Json::object();
    for (rktl::String const& name : object.getClasses())
        json[name] = nullptr;
    for (auto const& [name, confidence] : object.getClassConfidences())
        json[name] = double(confidence);
    return json;
}

/// Those handed to the tracker, in the order of their list.
Json regionsJson(ProcessFrame const& frame)
{
    Json json = Json::array();
    unsigned int count = 0;
    for (rk_vertex const* region = frame.getUntracked("Moving", count); region; region = region->next)
        json.push_back({{"x", region->x}, {"y", region->y}, {"width", region->width}, {"height", region->height},
            {"motion_score", double(region->motion_score)}});
    return json;
}

/// Where and when a frame stands in its video.
Json momentJson(uint64_t number, Frame const& frame)
{
    return {{"frame", number}, {"position_ms", frame.getPosition().toMilliseconds()},
        {"time_ms", milliseconds(frame.getTimeStamp())}};
}

Json objectsJson(Frame const& frame)
{
    Json json = Json::array();
    for (auto const& [id, object] : frame.getObjects())
        json.push_back(objectJson(object));
    return json;
}

} // namespace

std::vector<uint32_t> objectIds(Event const& event)
{
    rksl::Set<rktl::Integer> ids;
    event.getObjectIDs(rktl::url(event.getOrigin()), ids);
    std::vector<uint32_t> result;
    for (rktl::Integer const& id : ids)
        result.push_back(uint32_t(int32_t(id)));
    return result;
}

Json eventJson(Event const& event)
{
    return {{"uid", event.getUID()}, {"type", std::string(event.getType())}, {"spy_type", std::string(event.getSpyType())},
        {"subtitle", std::string(event.getSubtitle())}, {"description", std::string(event.getDescription())},
        {"confidence", event.getConfidence()}, {"start_ms", milliseconds(event.getStart().first)},
        {"stop_ms", milliseconds(event.getStop().first)}, {"status", std::string(Event::stringFromStatus(event.getStatus()))},
        {"objects", objectIds(event)}};
}

Json eventLine(FrameResult const& result, Event const& event)
{
    Json json = momentJson(result.number, result.frame);
    json.update(eventJson(event));
    return json;
}

Json objectJson(Object const& object)
{
    Object::Node newest;
    rktl::TimeStamp time;
    bool const hasPath = object.newest(newest, time);
    Json merges = Json::array();
    for (rktl::Integer const& id : newest.mMerges)
        merges.push_back(int32_t(id));
    return {{"id", object.getId()}, {"type", std::string(object.getType())}, {"state", object.getState()},
        {"box", hasPath ? boxJson(newest.mBox) : Json()}, {"first_box", boxJson(object.getFirstBox())}, {"merges", merges},
        {"age_ms", object.age().toMilliseconds()}, {"near_edge", object.getAttribute("Near Edge").toBool()},
        {"classes", classesJson(object)}, {"attributes", attributesJson(object)}};
}

Json frameJson(FrameResult const& result)
{
    Json json = momentJson(result.number, result.frame);
    json["width"] = result.frame.getWidth();
    json["height"] = result.frame.getHeight();
    json["colour"] = result.colour;
    json["failed"] = result.failed;
    json["attributes"] = attributesJson(result.frame);
    json["regions"] = regionsJson(result.frame);
    json["objects"] = objectsJson(result.frame);
    Json& events = json["events"] = Json::array();
    for (Event const& event : result.events)
        events.push_back(eventJson(event));
    json["sent"] = result.sent;
    return json;
}

Json receivedFrameJson(uint64_t number, Frame const& frame)
{
    Json json = momentJson(number, frame);
    json["attributes"] = attributesJson(frame);
    json["objects"] = objectsJson(frame);
    return json;
}

std::string jsonLine(Json const& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace tools
