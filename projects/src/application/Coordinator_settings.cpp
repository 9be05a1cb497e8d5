#include "application/Coordinator.h"

#include "application/SettingsTree.h"
#include "misc/rktl_Logger.h"

#include <algorithm>
#include <vector>

using rktl::LogType;

namespace {

/// From the application's home. False when the file cannot be read or is empty.
bool readText(char const* path, rktl::String& text)
{
    return text.fromFile((rktl::String::fromEnvVarible("CS_APP_HOME") + path).c_str()) && !text.empty();
}

bool hasTag(treeNode const& node, std::string_view tag)
{
    return node.tag == tag;
}

/// The element's only children, x and y.
bool readPoint(treeNode const& node, rkml::Point2D<float>& point)
{
    auto const children = childrenOf(node);
    if (children.size() != 2 || !hasTag(*children[0], "x") || !hasTag(*children[1], "y"))
        return false;
    point = {static_cast<float>(decimalValue(children[0]->value)), static_cast<float>(decimalValue(children[1]->value))};
    return true;
}

bool readPolygon(treeNode const& node, rkml::Polygon2D<float>& polygon)
{
    if (!hasTag(node, "polygon"))
        return false;
    for (treeNode const* child : childrenOf(node)) {
        rkml::Point2D<float> point;
        if (!hasTag(*child, "point") || !readPoint(*child, point))
            return false;
        polygon.points().push_back(point);
    }
    return true;
}

} // namespace

bool Coordinator::loadXML(rktl::Logger& logger, SettingsMap& settings)
{
    rktl::String text;
    if (!readText("/html/settings_xml.txt", text)) {
        logger.log(LogType::Info, "No custom settings, loading default xml.");
        if (!readText("/html/default_settings_xml.txt", text)) {
            logger.log(LogType::Error, "No default settings available.");
            return false;
        }
    }
    if (parseSettings(text, settings))
        return true;
    logger.log(LogType::Error, "Failed to parse xml into a tree.");
    return false;
}

bool Coordinator::parseLine(rktl::String const& text, rkml::LineSegment2D<float>& line)
{
    SettingsTree tree;
    if (!tree.parse(("<line>" + text + "</line>").c_str()))
        return false;
    auto const children = childrenOf(tree.root());
    rkml::Point2D<float> first;
    rkml::Point2D<float> second;
    if (children.size() != 2 || !hasTag(*children[0], "first") || !hasTag(*children[1], "second") ||
        !readPoint(*children[0], first) || !readPoint(*children[1], second))
        return false;
    line = {first, second};
    return true;
}

bool Coordinator::parseZones(rktl::String const& text, rksl::List<rkml::Polygon2D<float>>& zones)
{
    SettingsTree tree;
    if (!tree.parse(("<zones>" + text + "</zones>").c_str()))
        return false;
    for (treeNode const* child : childrenOf(tree.root())) {
        rkml::Polygon2D<float> polygon;
        if (!readPolygon(*child, polygon))
            return false;
        zones.push_back(polygon);
    }
    return true;
}
