#include "Snapshot.h"

#include "support/SpyPainter.h"
#include "BaseClasses/ProcessFrame.h"
#include "support/ObjectPainter.h"
#include "support/Text.h"
#include "trackers/EventSpies/Direction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tools {

namespace {

constexpr uint32_t TEXT_SCALE = ObjectPainter::TEXT_SCALE;
constexpr uint32_t LINE = (TEXT_ROWS + 3) * TEXT_SCALE; // pixels
constexpr int32_t MARGIN = 10;
constexpr Rgb ALARM = {255, 59, 48};
constexpr Rgb TITLE = {255, 214, 10};
constexpr Rgb HEADING = {48, 209, 88};
constexpr Rgb PAPER = {24, 26, 30};
constexpr Rgb INK = {235, 235, 240};
constexpr Rgb FAINT = {160, 164, 174};

double length(Spot from, Spot to)
{
    return std::hypot(to.x - from.x, to.y - from.y);
}

int headingOf(Spot from, Spot to)
{
    double const degrees = std::atan2(from.y - to.y, to.x - from.x) * 180 / std::numbers::pi;
    return int(std::lround(degrees < 0 ? degrees + 360 : degrees)) % 360;
}

/// The headings that alarm, from where an object's recent path begins. reach: pixels of the picture that it has come since.
void drawRule(RgbImage& image, Spot centre, Direction const& rule, double reach)
{
    double const radius = std::max(reach * 1.15, 70.0);
    Sector const sector = {double(rule.getAngle()), double(rule.getTolerance())};
    fillSector(image, centre, radius, sector, HEADING, 0.28);
    if (sector.tolerance < 180)
        for (double const side : {sector.heading - sector.tolerance, sector.heading + sector.tolerance})
            drawLine(image, centre, pointAt(centre, side, radius), 1.5, HEADING);
    drawArrow(image, centre, pointAt(centre, sector.heading, radius * 1.2), 2.5, HEADING);
}

std::string positionText(int64_t milliseconds)
{
    return rktl::ElapsedTime(milliseconds).toTimeString(4);
}

std::string secondsText(rktl::ElapsedTime const& span)
{
    return rktl::String::fromFormat("%.1f s", double(span.toMilliseconds()) / 1000);
}

/// The object's whole way, and where it went in the window of the rule.
std::string movementText(Object const& object, ObjectPath const& path)
{
    return rktl::String::fromFormat("Object %u: %ld px in %s, heading %d deg", object.getId(),
        std::lround(length(path.spots.front(), path.spots.back())), secondsText(object.age()).c_str(),
        headingOf(path.recent(), path.spots.back()));
}

/// Line Crossing "gate" alarms when ...
std::string ruleText(FrameEventSpy const& rule)
{
    return rule.getFriendlyName() + " \"" + rule.getName() + "\" " + rule.getRuleText();
}

/// What the event itself says of its reason; "" when it says nothing.
std::string reasonText(Event const& event)
{
    std::string text = event.getSubtitle();
    auto const add = [&](std::string const& part) { text += (text.empty() ? "" : ", ") + part; };
    if (!event.getDescription().empty())
        add(event.getDescription());
    if (!event.getAttribute("object-count").empty())
        add(event.getAttribute("object-count") + " objects");
    return text;
}

/// As it is on the frame or, when it has gone, as the event has kept it; null when neither knows it.
Object const* objectOf(uint32_t id, ProcessFrame const& frame, Event const& event)
{
    Object const* object = frame.getObject(id);
    for (auto kept = event.getFrames().begin(); !object && kept != event.getFrames().end(); ++kept)
        object = kept->getObject(id);
    return object;
}

/// At blanks, where a line would leave the picture.
void addWrapped(std::vector<std::string>& lines, std::string text, uint32_t width)
{
    size_t const room = std::max<size_t>(20, (width - 2 * MARGIN) / (TEXT_COLUMNS * TEXT_SCALE));
    while (text.size() > room) {
        size_t const blank = text.rfind(' ', room);
        size_t const end = blank == std::string::npos || blank == 0 ? room : blank;
        lines.push_back(text.substr(0, end));
        text.erase(0, text.find_first_not_of(' ', end));
    }
    lines.push_back(text);
}

/// The frame with the caption's strip below it.
RgbImage withStrip(RgbImage const& picture, size_t lines)
{
    RgbImage image(picture.width, picture.height + uint32_t(lines) * LINE + 2 * MARGIN - 3 * TEXT_SCALE, PAPER);
    std::copy(picture.bytes.begin(), picture.bytes.end(), image.bytes.begin());
    return image;
}

RgbImage enlarged(ProcessFrame const& frame, uint32_t& scale)
{
    using rkil::MultiImage;
    bool const isColour = frame.isImageSet("Native Image", MultiImage::flatColour);
    MultiImage const& native = frame.getMultiImage("Native Image");
    rk_image const& image = isColour ? *native.getFlatColour().getImage() : *native.getFlatGray().getImage();
    scale = drawingScale(image.width, image.height);
    return toRgb(image, scale);
}

} // namespace

RgbImage drawSnapshot(FrameResult const& result, Event const& event, FrameEventSpy const* rule, uint64_t number)
{
    uint32_t scale = 1;
    RgbImage picture = enlarged(result.frame, scale);
    if (rule)
        paintSpy(picture, scale, *rule);
    auto const* const heading = dynamic_cast<Direction const*>(rule);
    ObjectPainter painter(picture, scale);
    std::vector<std::string> lines;
    addWrapped(lines,
        "ALARM " + std::to_string(number) + " at " + positionText(result.frame.getPosition().toMilliseconds()) + "  (" +
            result.frame.getTimeStamp().toGMT().toISOString() + ")",
        picture.width);
    std::string const reason = reasonText(event);
    if (!reason.empty())
        addWrapped(lines, reason, picture.width);
    for (uint32_t const id : objectIds(event)) {
        Object const* const object = objectOf(id, result.frame, event);
        rkml::BoundingBox<int> box;
        if (!object || !object->newest(box))
            continue;
        ObjectPath const path(*object, heading ? std::optional(heading->getTimeWindow()) : std::nullopt);
        if (heading)
            drawRule(picture, painter.at(path.recent()), *heading, length(path.recent(), path.spots.back()) * scale);
        painter.path(path);
        painter.box(box, std::to_string(id) + classText(*object), ALARM);
        addWrapped(lines, movementText(*object, path), picture.width);
    }
    size_t const ruleLine = lines.size();
    if (rule)
        addWrapped(lines, ruleText(*rule), picture.width);
    RgbImage image = withStrip(picture, lines.size());
    for (size_t i = 0; i < lines.size(); ++i)
        drawText(image, MARGIN, int32_t(picture.height) + MARGIN + int32_t(i * LINE), lines[i], TEXT_SCALE,
            i == 0             ? TITLE
                : i < ruleLine ? INK
                               : FAINT);
    return image;
}

} // namespace tools
