#include "application/Settings.h"

#include "application/SettingsTree.h"
#include "misc/rktl_ElapsedTime.h"
#include "trackers/EventSpies/Direction.h"
#include "video/rkvl_Resolution.h"

#include <cctype>
#include <cstdlib>

namespace {

rktl::String const& valueOf(SettingsMap const& settings, char const* key)
{
    static rktl::String const missing;
    auto const entry = settings.find(key);
    return entry == settings.end() ? missing : entry->second;
}

rktl::ElapsedTime readSpan(SettingsMap const& settings, char const* key, char const* unitKey)
{
    return rktl::ElapsedTime::fromValUnit(decimalValue(valueOf(settings, key)), valueOf(settings, unitKey));
}

/// Percent in the text.
float readShare(SettingsMap const& settings, char const* key)
{
    return static_cast<float>(decimalValue(valueOf(settings, key)) / 100.0);
}

/// Whole percent in the text.
float readSensitivity(SettingsMap const& settings, char const* key)
{
    return static_cast<float>(valueOf(settings, key).toInteger()) / 100.0f;
}

} // namespace

bool parseSettings(rktl::String const& text, SettingsMap& settings)
{
    SettingsTree tree;
    if (!tree.parse(text.c_str()))
        return false;
    for (treeNode const* child : childrenOf(tree.root())) {
        rktl::String const tag(child->tag);
        settings[tag] = child->childCount == 0 ? rktl::String(child->value) : text.extract("<" + tag + ">", "</" + tag + ">");
    }
    return true;
}

double decimalValue(rktl::String const& text)
{
    // strtod also reads hexadecimal numbers, infinities and what is not a number.
    char const* digits = text.c_str();
    while (std::isspace(static_cast<unsigned char>(*digits)))
        ++digits;
    if (*digits == '-' || *digits == '+')
        ++digits;
    bool const isDecimal = (*digits >= '0' && *digits <= '9') || *digits == '.';
    bool const isHexadecimal = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    return isDecimal && !isHexadecimal ? std::strtod(text.c_str(), nullptr) : 0.0;
}

bool readResolution(SettingsMap const& settings, rkvl::Resolution& resolution)
{
    return resolution.fromString(valueOf(settings, "video_resolution"));
}

Direction readDirection(SettingsMap const& settings)
{
    Direction spy("", "", valueOf(settings, "angle").toUnsignedInt(), valueOf(settings, "min_distance").toUnsignedInt(),
        readSpan(settings, "min_age", "min_age_unit"), valueOf(settings, "tolerance").toUnsignedInt());
    spy.setMaxHeight(readShare(settings, "max_height"));
    spy.setMaxWidth(readShare(settings, "max_width"));
    return spy;
}

rktl::ElapsedTime readAlarmInterval(SettingsMap const& settings)
{
    return readSpan(settings, "alarm_interval", "alarm_interval_unit");
}

rksl::Set<rktl::String> readModelFiles(SettingsMap const& settings, rktl::String const& home)
{
    rksl::Set<rktl::String> paths;
    for (rktl::String const& word : valueOf(settings, "model_files").tokenize(","))
        if (rktl::String const path = word.trim(); !path.empty())
            paths.insert(home.empty() ? path : rktl::String(home + "/" + path));
    return paths;
}

SimpleTracker::Params readTrackerParams(SettingsMap const& settings, Direction const& spy)
{
    SimpleTracker::Params params;
    params.sensitivity = readSensitivity(settings, "sensitivity");
    params.sceneSensitivity = readSensitivity(settings, "light_sensitivity");
    params.minConfidence = 0.5f;
    params.minWidth = valueOf(settings, "min_width").toInteger();
    params.minHeight = valueOf(settings, "min_height").toInteger();
    params.mode = SimpleTracker::bothDetectors;
    params.classModels = readModelFiles(settings, rktl::String::fromEnvVarible("CS_APP_HOME"));
    params.spies.push_back(EventSpyFactory(&spy));
    return params;
}
