#include "Snapshot.h"

#include "BaseClasses/ProcessFrame.h"
#include "support/Drawing.h"
#include "support/Text.h"
#include "trackers/EventSpies/Direction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tools {

namespace {

constexpr uint32_t LEAST_WIDTH = 640; // pixels of a snapshot, so that its text fits
constexpr uint32_t TEXT_SCALE = 2;
constexpr uint32_t LINE = (TEXT_ROWS + 3) * TEXT_SCALE; // pixels
constexpr int32_t MARGIN = 10;
constexpr Rgb ALARM = {255, 59, 48};
constexpr Rgb PATH = {255, 214, 10};
constexpr Rgb PAST = {255, 255, 255};
constexpr Rgb HEADING = {48, 209, 88};
constexpr Rgb SHADE = {0, 0, 0};
constexpr Rgb PAPER = {24, 26, 30};
constexpr Rgb INK = {235, 235, 240};
constexpr Rgb FAINT = {160, 164, 174};

/// Centres of an object's boxes, oldest first, in pixels of the frame.
struct Path {
    std::vector<Spot> spots;
    size_t window = 0; // index of the first spot that the rule looks at

    Spot recent() const { return spots[window]; }
};

Path pathOf(Object const& object, Direction const* rule)
{
    Path path;
    rktl::TimeStamp newest;
    object.newestTime(newest);
    for (auto const& [time, node] : object.getTrack()) {
        if (rule && newest - time > rule->getTimeWindow())
            ++path.window;
        path.spots.push_back({node.mBox.x + node.mBox.width / 2.0, node.mBox.y + node.mBox.height / 2.0});
    }
    return path;
}

double length(Spot from, Spot to)
{
    return std::hypot(to.x - from.x, to.y - from.y);
}

int headingOf(Spot from, Spot to)
{
    double const degrees = std::atan2(from.y - to.y, to.x - from.x) * 180 / std::numbers::pi;
    return int(std::lround(degrees < 0 ? degrees + 360 : degrees)) % 360;
}

/// Draws on the enlarged frame.
class Painter {
public:
    Painter(RgbImage& image, uint32_t scale)
        : mImage(image)
        , mScale(scale)
    {
    }

    void sector(Spot start, Direction const& rule, double reach)
    {
        Spot const centre = at(start);
        double const radius = std::max(reach * mScale * 1.15, 70.0);
        Sector const sector = {double(rule.getAngle()), double(rule.getTolerance())};
        fillSector(mImage, centre, radius, sector, HEADING, 0.28);
        if (sector.tolerance < 180)
            for (double const side : {sector.heading - sector.tolerance, sector.heading + sector.tolerance})
                drawLine(mImage, centre, pointAt(centre, side, radius), 1.5, HEADING);
        drawArrow(mImage, centre, pointAt(centre, sector.heading, radius * 1.2), 2.5, HEADING);
    }

    void path(Path const& path)
    {
        line(path.spots, 0, 3.5, SHADE);
        line(path.spots, 0, 1.5, PAST);
        line(path.spots, path.window, 5, SHADE);
        line(path.spots, path.window, 2.5, PATH);
        drawDot(mImage, at(path.recent()), 5, SHADE);
        drawDot(mImage, at(path.recent()), 4, PATH);
    }

    void box(rkml::BoundingBox<int> const& box, std::string const& label)
    {
        // The extent of a region is one less than the pixels that it covers.
        Spot const corner = at({box.x - 2.0, box.y - 2.0});
        double const width = (box.width + 5.0) * mScale, height = (box.height + 5.0) * mScale;
        drawBox(mImage, {corner.x - 1, corner.y - 1}, width + 2, height + 2, 4, SHADE);
        drawBox(mImage, corner, width, height, 2, ALARM);
        double const tagWidth = double(label.size() * TEXT_COLUMNS * TEXT_SCALE + 8), tagHeight = TEXT_ROWS * TEXT_SCALE + 4;
        Spot tag = {std::clamp(corner.x, 0.0, std::max(0.0, mImage.width - tagWidth)), corner.y - tagHeight};
        if (tag.y < 0)
            tag.y = corner.y + height;
        fillBox(mImage, tag, tagWidth, tagHeight, ALARM, 1);
        drawText(mImage, int32_t(tag.x) + 5, int32_t(tag.y) + 3, label, TEXT_SCALE, {255, 255, 255});
    }

private:
    void line(std::vector<Spot> const& spots, size_t first, double thickness, Rgb colour)
    {
        for (size_t i = first + 1; i < spots.size(); ++i)
            drawLine(mImage, at(spots[i - 1]), at(spots[i]), thickness, colour);
    }

    Spot at(Spot frame) const { return {frame.x * mScale, frame.y * mScale}; }

    RgbImage& mImage;
    uint32_t const mScale;
};

std::string positionText(int64_t milliseconds)
{
    return rktl::ElapsedTime(milliseconds).toTimeString(4);
}

std::string secondsText(rktl::ElapsedTime const& span)
{
    return rktl::String::fromFormat("%.1f s", double(span.toMilliseconds()) / 1000);
}

/// The object's whole way, and where it went in the window of the rule.
std::string movementText(Object const& object, Path const& path)
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
    scale = (LEAST_WIDTH + image.width - 1) / image.width;
    return toRgb(image, scale);
}

} // namespace

RgbImage drawSnapshot(FrameResult const& result, Event const& event, Direction const* rule, uint64_t number)
{
    uint32_t scale = 1;
    RgbImage picture = enlarged(result.frame, scale);
    Painter painter(picture, scale);
    std::vector<std::string> lines = {"ALARM " + std::to_string(number) + " at " +
        positionText(result.frame.getPosition().toMilliseconds()) + "  (" + result.frame.getTimeStamp().toGMT().toISOString() +
        ")"};
    for (uint32_t const id : objectIds(event)) {
        Object const* const object = result.frame.getObject(id);
        rkml::BoundingBox<int> box;
        if (!object || !object->newest(box))
            continue;
        Path const path = pathOf(*object, rule);
        if (rule)
            painter.sector(path.recent(), *rule, length(path.recent(), path.spots.back()));
        painter.path(path);
        painter.box(box, std::to_string(id));
        lines.push_back(movementText(*object, path));
    }
    if (rule)
        lines.push_back(ruleText(*rule));
    RgbImage image = withStrip(picture, lines.size());
    for (size_t i = 0; i < lines.size(); ++i)
        drawText(image, MARGIN, int32_t(picture.height) + MARGIN + int32_t(i * LINE), lines[i], TEXT_SCALE,
            i == 0                      ? PATH
                : i + 1 == lines.size() ? FAINT
                                        : INK);
    return image;
}

} // namespace tools
