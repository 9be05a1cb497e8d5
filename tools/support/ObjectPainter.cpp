#include "support/ObjectPainter.h"
#include "support/Text.h"

#include <algorithm>

namespace tools {

namespace {

constexpr uint32_t LEAST_WIDTH = 640;  // pixels of a picture with text on it
constexpr uint32_t MOST_HEIGHT = 8192; // pixels, when it was enlarged
constexpr Rgb PATH = {255, 214, 10};
constexpr Rgb PAST = {255, 255, 255};
constexpr Rgb SHADE = {0, 0, 0};

} // namespace

ObjectPath::ObjectPath(Object const& object, std::optional<rktl::ElapsedTime> recentWindow)
{
    rktl::TimeStamp newest;
    object.newestTime(newest);
    for (auto const& [time, node] : object.getTrack()) {
        if (recentWindow && newest - time > *recentWindow)
            ++window;
        spots.push_back({node.mBox.x + node.mBox.width / 2.0, node.mBox.y + node.mBox.height / 2.0});
    }
}

std::string classText(Object const& object)
{
    auto const& classes = object.getClassConfidences();
    auto const best = std::max_element(
        classes.begin(), classes.end(), [](auto const& a, auto const& b) { return a.second.value < b.second.value; });
    if (best == classes.end())
        return "";
    return rktl::String::fromFormat(" %s %.0f%%", best->first.c_str(), best->second.value * 100);
}

void ObjectPainter::path(ObjectPath const& path)
{
    line(path.spots, 0, 3.5, SHADE);
    line(path.spots, 0, 1.5, PAST);
    line(path.spots, path.window, 5, SHADE);
    line(path.spots, path.window, 2.5, PATH);
    drawDot(mImage, at(path.recent()), 5, SHADE);
    drawDot(mImage, at(path.recent()), 4, PATH);
}

void ObjectPainter::line(std::vector<Spot> const& spots, size_t first, double thickness, Rgb colour)
{
    for (size_t i = first + 1; i < spots.size(); ++i)
        drawLine(mImage, at(spots[i - 1]), at(spots[i]), thickness, colour);
}

void ObjectPainter::box(rkml::BoundingBox<int> const& box, std::string const& label, Rgb colour)
{
    // The extent of a region is one less than the pixels that it covers.
    Spot const corner = at({box.x - 2.0, box.y - 2.0});
    double const width = (box.width + 5.0) * mScale, height = (box.height + 5.0) * mScale;
    drawBox(mImage, {corner.x - 1, corner.y - 1}, width + 2, height + 2, 4, SHADE);
    drawBox(mImage, corner, width, height, 2, colour);
    double const tagWidth = double(label.size() * TEXT_COLUMNS * TEXT_SCALE + 8), tagHeight = TEXT_ROWS * TEXT_SCALE + 4;
    Spot tag = {std::clamp(corner.x, 0.0, std::max(0.0, mImage.width - tagWidth)), corner.y - tagHeight};
    if (tag.y < 0)
        tag.y = corner.y + height;
    fillBox(mImage, tag, tagWidth, tagHeight, colour, 1);
    drawText(mImage, int32_t(tag.x) + 5, int32_t(tag.y) + 3, label, TEXT_SCALE, {255, 255, 255});
}

uint32_t drawingScale(uint32_t width, uint32_t height)
{
    return std::clamp(MOST_HEIGHT / height, 1u, (LEAST_WIDTH + width - 1) / width);
}

} // namespace tools
