#include "Snapshot.h"

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

std::string ruleText(Direction const& rule)
{
    return rktl::String::fromFormat("Alarms at %u +/- %u deg over %s, from %u px on", rule.getAngle(), rule.getTolerance(),
        secondsText(rule.getTimeWindow()).c_str(), rule.getMinDistance());
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
    scale = drawingScale(image.width);
    return toRgb(image, scale);
}

} // namespace

RgbImage drawSnapshot(FrameResult const& result, Event const& event, Direction const* rule, uint64_t number)
{
    uint32_t scale = 1;
    RgbImage picture = enlarged(result.frame, scale);
    ObjectPainter painter(picture, scale);
    std::vector<std::string> lines = {"ALARM " + std::to_string(number) + " at " +
        positionText(result.frame.getPosition().toMilliseconds()) + "  (" + result.frame.getTimeStamp().toGMT().toISOString() +
        ")"};
    for (uint32_t const id : objectIds(event)) {
        Object const* const object = result.frame.getObject(id);
        rkml::BoundingBox<int> box;
        if (!object || !object->newest(box))
            continue;
        ObjectPath const path(*object, rule ? std::optional(rule->getTimeWindow()) : std::nullopt);
        if (rule)
            drawRule(picture, painter.at(path.recent()), *rule, length(path.recent(), path.spots.back()) * scale);
        painter.path(path);
        painter.box(box, std::to_string(id), ALARM);
        lines.push_back(movementText(*object, path));
    }
    if (rule)
        lines.push_back(ruleText(*rule));
    RgbImage image = withStrip(picture, lines.size());
    for (size_t i = 0; i < lines.size(); ++i)
        drawText(image, MARGIN, int32_t(picture.height) + MARGIN + int32_t(i * LINE), lines[i], TEXT_SCALE,
            i == 0                      ? TITLE
                : i + 1 == lines.size() ? FAINT
                                        : INK);
    return image;
}

} // namespace tools
