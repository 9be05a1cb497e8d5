#include "support/RunPlan.h"

#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/Direction.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace tools {

namespace {

using Json = nlohmann::ordered_json;
using Polygons = rksl::List<rkml::Polygon2D<float>>;

[[noreturn]] void refuse(std::string const& expected)
{
    throw std::runtime_error("expected " + expected);
}

// ---- One value of a run file and its place in a plan

int64_t readWhole(Json const& json, int64_t low, int64_t high)
{
    if (json.is_number_integer() && (!json.is_number_unsigned() || json.get<uint64_t>() <= uint64_t(INT64_MAX)))
        if (auto const number = json.get<int64_t>(); number >= low && number <= high)
            return number;
    refuse("a whole number from " + std::to_string(low) + " to " + std::to_string(high));
}

double readNumber(Json const& json)
{
    if (!json.is_number() || !std::isfinite(json.get<double>()))
        refuse("a number");
    return json.get<double>();
}

void read(Json const& json, int32_t& value)
{
    value = int32_t(readWhole(json, INT32_MIN, INT32_MAX));
}

void read(Json const& json, float& value)
{
    value = float(readNumber(json));
}

void read(Json const& json, rktl::Double& value)
{
    value = readNumber(json);
}

void read(Json const& json, rktl::Integer& value)
{
    value = json.is_boolean() ? int32_t(json.get<bool>()) : int32_t(readWhole(json, INT32_MIN, INT32_MAX));
}

void read(Json const& json, rktl::ElapsedTime& value)
{
    value = rktl::ElapsedTime(readWhole(json, INT32_MIN, INT32_MAX));
}

rkml::Polygon2D<float> readPolygon(Json const& json)
{
    std::vector<rkml::Point2D<float>> points;
    for (Json const& point : json) {
        if (!point.is_array() || point.size() != 2)
            refuse("points as [x, y]");
        points.emplace_back(float(readNumber(point[0])), float(readNumber(point[1])));
    }
    if (!json.is_array() || points.size() < 3)
        refuse("polygons of 3 points or more");
    return rkml::Polygon2D<float>(points);
}

void read(Json const& json, Polygons& value)
{
    if (!json.is_array())
        refuse("a list of polygons");
    Polygons polygons;
    for (Json const& polygon : json)
        polygons.push_back(readPolygon(polygon));
    value = polygons;
}

Json write(int32_t value)
{
    return value;
}
Json write(float value)
{
    return double(value);
}
Json write(rktl::Double const& value)
{
    return double(value);
}
Json write(rktl::Integer const& value)
{
    return int32_t(value);
}
Json write(rktl::ElapsedTime const& value)
{
    return value.toMilliseconds();
}

void read(Json const& json, rksl::Set<rktl::String>& value)
{
    if (!json.is_array())
        refuse("a list of paths");
    rksl::Set<rktl::String> paths;
    for (Json const& path : json) {
        if (!path.is_string())
            refuse("paths as texts");
        paths.insert(path.get<std::string>());
    }
    value = paths;
}

Json write(rksl::Set<rktl::String> const& value)
{
    Json paths = Json::array();
    for (rktl::String const& path : value)
        paths.push_back(std::string(path));
    return paths;
}

Json write(Polygons const& value)
{
    Json polygons = Json::array();
    for (auto const& polygon : value) {
        Json& points = polygons.emplace_back(Json::array());
        for (auto const& point : polygon.points())
            points.push_back({double(point.x), double(point.y)});
    }
    return polygons;
}

template <class Record, class Visitor> void visitParams(Record& params, Visitor visit)
{
    visit("mode", params.mode);
    visit("min_width", params.minWidth);
    visit("min_height", params.minHeight);
    visit("sensitivity", params.sensitivity);
    visit("scene_sensitivity", params.sceneSensitivity);
    visit("mask_polygons", params.maskPolygons);
    visit("processing_interval_ms", params.processingInterval);
    visit("models", params.classModels);
}

template <class Record, class Visitor> void visitTracker(Record& tracker, Visitor visit)
{
    visit("resurrection_window_ms", tracker.mResurrectionWindow);
    visit("resurrection_distance", tracker.mResurrectionDistance);
    visit("resurrection_confidence", tracker.mResurrectionConfidence);
    visit("invalid_window_ms", tracker.mInvalidWindow);
    visit("defer_time_ms", tracker.mDeferTime);
    visit("min_track_length", tracker.mMinTrackLength);
    visit("max_track_merges", tracker.mMaxTrackMerges);
    visit("occlusion_zones", tracker.mOcclusionZones);
}

template <class Record, class Visitor> void visitFlags(Record& tracker, Visitor visit)
{
    visit("always_update_histograms", tracker.mAlwaysUpdateHistograms);
    visit("advanced_histograms", tracker.mAdvancedHistograms);
}

/// The values of a plan by name, but its settings and spies.
Json valuesOf(RunPlan const& plan)
{
    Json values = Json::object();
    auto add = [&](char const* name, auto const& value) { values[name] = write(value); };
    visitParams(plan.params, add);
    visitTracker(plan.tracker, add);
    visitFlags(plan.tracker, [&](char const* name, rktl::Integer const& value) { values[name] = value != 0; });
    return values;
}

rksl::List<EventSpyFactory> parseSpies(std::string const& text)
{
    rksl::List<EventSpyFactory> spies;
    if (text == "none")
        return spies;
    auto const root = rkxml::DomIterator::parse("<spies>" + text + "</spies>");
    if (root.atEnd() || !root.hasChildren())
        refuse("XML elements, or \"none\"");
    for (auto child = root.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        EventSpyFactory factory;
        if (!factory.fromXML(child.toXML().c_str()) || !factory.getSpy())
            refuse("spies that are known and complete, not <" + child.getName() + ">");
        spies.push_back(factory);
    }
    return spies;
}

/// Calls action, and puts the name of the value in front of what it has to complain about.
template <class Action> void named(std::string const& name, Action action)
{
    try {
        action();
    } catch (std::exception const& error) {
        throw std::runtime_error(name + ": " + error.what());
    }
}

} // namespace

RunPlan::RunPlan(SettingsMap const& fromSettings)
    : settings(fromSettings)
    , params(readTrackerParams(fromSettings, readDirection(fromSettings)))
    , tracker(SimpleTracker::trackerParameters(params))
{
}

void RunPlan::apply(nlohmann::ordered_json const& run)
{
    Json known = valuesOf(*this);
    for (auto const& [name, value] : run.items())
        if (!known.contains(name) && name != "settings" && name != "spies")
            throw std::runtime_error(name + ": is no value of a run");
    auto take = [&](char const* name, auto& value) {
        if (run.contains(name))
            named(name, [&] { read(run[name], value); });
    };
    visitParams(params, take);
    tracker = SimpleTracker::trackerParameters(params);
    visitTracker(tracker, take);
    visitFlags(tracker, take);
    if (run.contains("spies"))
        named("spies", [&] {
            if (!run["spies"].is_string())
                refuse("a text");
            spies = run["spies"].get<std::string>();
            params.spies = parseSpies(spies);
            params.keepSpyClasses = true;
        });
}

void RunPlan::useSpies(SpiesFile const& file, bool alone)
{
    file.addTo(params, alone);
    keepSpies();
}

void RunPlan::useSettingsSpies(rktl::String& complaint)
{
    char const* const home = std::getenv("CS_APP_HOME");
    if (spies.empty() && takeSpiesFile(settings, home ? home : ".", params, complaint))
        keepSpies();
}

void RunPlan::keepSpies()
{
    spies.clear();
    for (EventSpyFactory const& factory : params.spies)
        spies += factory.toXML();
}

nlohmann::ordered_json RunPlan::toJson() const
{
    Json run;
    Json& texts = run["settings"] = Json::object();
    for (auto const& [key, value] : settings)
        texts[key] = std::string(value);
    if (!spies.empty())
        run["spies"] = std::string(spies);
    Json const usual = valuesOf(RunPlan(settings)), own = valuesOf(*this);
    for (auto const& [name, value] : own.items())
        if (value != usual[name])
            run[name] = value;
    return run;
}

void readRunSettings(nlohmann::ordered_json const& run, SettingsMap& settings)
{
    if (!run.is_object())
        throw std::runtime_error("expected a JSON object");
    if (!run.contains("settings"))
        return;
    named("settings", [&] {
        if (!run["settings"].is_object())
            refuse("text by key");
        for (auto const& [key, value] : run["settings"].items()) {
            if (!value.is_string())
                refuse("a text for " + key);
            settings[key] = value.get<std::string>();
        }
    });
}

} // namespace tools
