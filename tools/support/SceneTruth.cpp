#include "support/SceneTruth.h"

#include <cmath>
#include <map>

namespace tools {

namespace {

using nlohmann::ordered_json;

double oneDecimal(double value)
{
    return std::round(value * 10) / 10;
}

ordered_json frameTruth(std::vector<camera::SceneObject> const& objects)
{
    ordered_json list = ordered_json::array();
    for (camera::SceneObject const& object : objects)
        list.push_back({{"id", object.actor->id}, {"kind", object.actor->figure.kind},
            {"box", {object.x, object.y, object.width, object.height}}, {"heading", oneDecimal(object.actor->heading())}});
    return list;
}

ordered_json actorTruth(camera::SceneActor const& actor)
{
    return {{"id", actor.id}, {"kind", actor.figure.kind}, {"heading", oneDecimal(actor.heading())},
        {"speed", oneDecimal(std::hypot(double(actor.speedX), double(actor.speedY)))}, {"wrong_way", actor.wrongWay}};
}

} // namespace

ordered_json sceneTruth(std::string const& name, camera::Scene const& scene, camera::FrameRate rate)
{
    std::map<uint32_t, ordered_json> objects;
    ordered_json frames = ordered_json::array();
    for (uint64_t frame = 0; rate.time(frame) < scene.duration(); ++frame) {
        int64_t const time = rate.time(frame);
        auto const visible = scene.objectsAt(time);
        for (camera::SceneObject const& object : visible) {
            auto const [entry, isNew] = objects.try_emplace(object.actor->id, actorTruth(*object.actor));
            if (isNew) {
                entry->second["first_frame"] = frame;
                entry->second["first_ms"] = time;
            }
            entry->second["last_frame"] = frame;
            entry->second["last_ms"] = time;
        }
        frames.push_back({{"frame", frame}, {"time_ms", time}, {"objects", frameTruth(visible)}});
    }

    ordered_json truth = {{"scene", name}, {"width", scene.width()}, {"height", scene.height()},
        {"fps", double(rate.numerator) / rate.denominator}, {"duration_ms", scene.duration()}};
    truth["objects"] = ordered_json::array();
    for (auto const& [id, object] : objects)
        truth["objects"].push_back(object);
    truth["frames"] = std::move(frames);
    return truth;
}

} // namespace tools
