#include "trackers/EventSpies/SpyXmlCheck.h"

#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/EventSpyFactory.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <span>

namespace {

using Faults = std::vector<rktl::String>;

enum class Kind {
    any,     // not looked into
    flag,    // by its mere presence
    boolean, // a word for true or false
    whole,   // a decimal number without a fraction
    number,  // decimal
    span,    // a number with a unit of time
    point,   // attributes x and y
    polygon, // children that are points
    words,   // one of some words
    parent,  // known children
};

/// What an element may hold.
struct Element {
    char const* name;
    Kind kind = Kind::any;
    double low = 0;                         // of numbers and spans
    double high = 4294967295.0;             //
    std::span<char const* const> words{};   // of Kind::words
    std::span<Element const> children = {}; // of Kind::parent
};

constexpr Element parent(char const* name, std::span<Element const> children)
{
    return {name, Kind::parent, 0, 0, {}, children};
}

constexpr Element oneOf(char const* name, std::span<char const* const> words)
{
    return {name, Kind::words, 0, 0, words, {}};
}

constexpr double noLimit = HUGE_VAL;
constexpr double int32Max = 2147483647.0;

constexpr Element baseElements[] = {{"name"}, {"desc"}, {"max-age", Kind::span, 0, noLimit}, {"priority", Kind::whole, 0, 65535},
    {"merge-events", Kind::flag}, {"alarm-type"}, {"attributes"}};

constexpr Element zones[] = {{"zone", Kind::polygon}};
constexpr Element classes[] = {{"class"}};
constexpr Element regions[] = {{"region", Kind::polygon}};
constexpr Element segment[] = {{"first", Kind::point}, {"second", Kind::point}};
constexpr Element minDistance = {"min-distance", Kind::whole};
constexpr Element minAge = {"min-age", Kind::span, 0, noLimit};
constexpr Element waitTime = {"wait-time", Kind::span, 0, noLimit};

constexpr Element frameElements[] = {baseElements[0], baseElements[1], baseElements[2], baseElements[3], baseElements[4],
    baseElements[5], baseElements[6], parent("zones", zones), parent("classes", classes), {"max-width", Kind::number, 0, noLimit},
    {"max-height", Kind::number, 0, noLimit}, minAge, minDistance, {"alarm-blobs", Kind::boolean}};

constexpr Element plainBase = parent("EventSpy", baseElements);
constexpr Element frameBase = parent("EventSpy", frameElements);

constexpr char const* directions[] = {"0", "1", "2"};
constexpr char const* passages[] = {"Both", "Enter", "Exit"};
constexpr char const* zoneTypes[] = {"Enter", "Exit"};
constexpr char const* activities[] = {"Delta", "NewObject", "DeadObject", "Threshold"};
constexpr char const* units[] = {"english", "metric"};

constexpr Element directionElements[] = {
    frameBase, {"angle", Kind::whole}, {"tolerance", Kind::whole}, minDistance, {"time-window", Kind::span, 0, noLimit}};
constexpr Element lineElements[] = {
    frameBase, segment[0], segment[1], {"cross-line", Kind::whole, 0, 1}, oneOf("direction", directions), minDistance, minAge};
constexpr Element perimeterElements[] = {frameBase, parent("perimeter-regions", regions), {"rkml_PolygonList", Kind::any},
    {"intrusion", Kind::number, 0, 1}, minDistance};
constexpr Element enterExitElements[] = {frameBase, oneOf("type", passages), oneOf("zone-type", zoneTypes)};
constexpr Element idleElements[] = {frameBase, waitTime, {"movement", Kind::whole, -1, int32Max}};
constexpr Element takenElements[] = {
    frameBase, {"sensitivity", Kind::number, 0, 1}, {"region", Kind::polygon}, {"replace-alarm", Kind::flag}};
constexpr Element plainElements[] = {plainBase};
constexpr Element activityElements[] = {
    frameBase, oneOf("type", activities), {"max-activity", Kind::whole, 0, int32Max}, minDistance, minAge};
constexpr Element crowdElements[] = {frameBase, {"max-density", Kind::number, 0, 1}, waitTime, parent("crowd-regions", regions)};
constexpr Element speedElements[] = {frameBase, {"speed-limit", Kind::whole, 0, int32Max}, {"distance", Kind::whole, 0, int32Max},
    oneOf("unit", units), parent("first-segment", segment), parent("second-segment", segment)};
constexpr Element objectElements[] = {frameBase, {"min-conf", Kind::number, 0, 1}, {"min-valid-time", Kind::span, 0, noLimit},
    {"min-life", Kind::span, 0, noLimit}, {"max-invalid-time", Kind::span, 0, noLimit}, {"max-death", Kind::span, 0, noLimit},
    {"non-contiguous", Kind::flag}, {"track-nascent", Kind::flag}};

struct SpyElements {
    unsigned short typeId;
    std::span<Element const> elements;
};

constexpr SpyElements spies[] = {
    {1004, directionElements},
    {1005, perimeterElements},
    {1006, idleElements},
    {1008, lineElements},
    {1009, activityElements},
    {1011, objectElements},
    {1012, takenElements},
    {1014, plainElements},
    {1017, enterExitElements},
    {1018, crowdElements},
    {1019, speedElements},
    {1022, plainElements},
    {1026, objectElements},
};

/// Whether the text is a decimal number and nothing else; blanks around it do not count.
bool isNumber(rktl::String const& text, double& value)
{
    if (text.find_first_of("xXnNiI") != std::string::npos) // strtod also knows hexadecimal, nan and inf
        return false;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    while (std::isspace(static_cast<unsigned char>(*end)))
        ++end;
    return end != text.c_str() && *end == '\0' && std::isfinite(value);
}

rktl::String limits(Element const& element)
{
    return element.high == noLimit ? rktl::String::fromFormat("from %.10g up", element.low)
                                   : rktl::String::fromFormat("from %.10g to %.10g", element.low, element.high);
}

/// "a, b or c"
rktl::String listOf(std::span<char const* const> words)
{
    rktl::String list;
    for (size_t i = 0; i < words.size(); ++i)
        list += rktl::String(i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    return list;
}

bool isWithin(Element const& element, rktl::String const& text)
{
    double value = 0;
    if (!isNumber(text, value) || value < element.low || value > element.high)
        return false;
    return element.kind != Kind::whole || value == std::trunc(value);
}

bool isUnitOfTime(rktl::String const& word)
{
    for (char const* unit : {"day", "hour", "minute", "second", "millisecond"})
        if (word.iCompare(unit) == 0 || word.iCompare(rktl::String(unit) + "s") == 0)
            return true;
    return false;
}

bool isBoolean(rktl::String const& word)
{
    for (char const* known : {"true", "t", "yes", "y", "on", "1", "false", "f", "no", "n", "off", "0"})
        if (word.iCompare(known) == 0)
            return true;
    return false;
}

rktl::String expected(rktl::String const& path, rktl::String const& what, rktl::String const& found)
{
    return path + ": expected " + what + ", not \"" + found + "\"";
}

void checkPoint(rkxml::DomIterator const& point, rktl::String const& path, Faults& faults)
{
    double value = 0;
    for (char const* axis : {"x", "y"})
        if (!isNumber(point.getAttribute(axis), value))
            faults.push_back(expected(path, rktl::String("a number for ") + axis, point.getAttribute(axis)));
}

void checkPolygon(rkxml::DomIterator const& polygon, rktl::String const& path, Faults& faults)
{
    for (auto point = polygon.childrenBegin(); !point.atEnd(); point.nextSibling())
        checkPoint(point, path + ": " + point.getName(), faults);
}

void checkChildren(rkxml::DomIterator const& cursor, std::span<Element const> known, rktl::String const& path, Faults& faults);

void check(rkxml::DomIterator const& cursor, Element const& element, rktl::String const& path, Faults& faults)
{
    rktl::String const value = cursor.getValue();
    bool fits = true;
    rktl::String what;
    switch (element.kind) {
    case Kind::any:
    case Kind::flag:
        return;
    case Kind::boolean:
        fits = isBoolean(value);
        what = "true or false";
        break;
    case Kind::whole:
    case Kind::number:
        fits = isWithin(element, value);
        what = (element.kind == Kind::whole ? "a whole number " : "a number ") + limits(element);
        break;
    case Kind::span:
        if (!isUnitOfTime(cursor.getAttribute("unit")))
            faults.push_back(expected(path, "a unit (day, hour, minute, second or millisecond)", cursor.getAttribute("unit")));
        fits = isWithin(element, value);
        what = "a number " + limits(element);
        break;
    case Kind::words:
        fits = std::any_of(element.words.begin(), element.words.end(), [&](char const* word) { return value == word; });
        what = listOf(element.words);
        break;
    case Kind::point:
        return checkPoint(cursor, path, faults);
    case Kind::polygon:
        return checkPolygon(cursor, path, faults);
    case Kind::parent:
        return checkChildren(cursor, element.children, path, faults);
    }
    if (!fits)
        faults.push_back(expected(path, what, value));
}

void checkChildren(rkxml::DomIterator const& cursor, std::span<Element const> known, rktl::String const& path, Faults& faults)
{
    rktl::String const prefix(path.empty() ? "" : path + ": ");
    if (cursor.hasValue())
        faults.push_back(prefix + "there is text between the elements: \"" + cursor.getValue() + "\"");
    for (auto child = cursor.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        rktl::String const name = child.getName();
        rktl::String const below = prefix + name;
        auto const found = std::find_if(known.begin(), known.end(), [&](Element const& element) { return name == element.name; });
        if (found == known.end())
            faults.push_back(below + ": there is no such element here");
        else
            check(child, *found, below, faults);
    }
}

} // namespace

void findXmlFaults(rkxml::DomIterator const& spy, std::vector<rktl::String>& faults)
{
    unsigned short const type = EventSpyFactory::getSpyType(spy.getName());
    auto const found =
        std::find_if(std::begin(spies), std::end(spies), [&](SpyElements const& known) { return known.typeId == type; });
    if (found == std::end(spies))
        faults.push_back("is no type of spy");
    else
        checkChildren(spy, found->elements, "", faults);
}

void findIntervalFaults(rkxml::DomIterator const& interval, std::vector<rktl::String>& faults)
{
    check(interval, {"processing-interval", Kind::span, 0, noLimit}, interval.getName(), faults);
}
