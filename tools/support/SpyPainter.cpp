#include "support/SpyPainter.h"

#include "support/Drawing.h"
#include "support/Text.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/LineCrossing.h"

#include <algorithm>
#include <cmath>

namespace tools {

namespace {

constexpr uint32_t TEXT_SCALE = 2;
constexpr Rgb OUTLINE = {90, 200, 250};
constexpr Rgb SHADE = {0, 0, 0};
constexpr double FILL = 0.18;
constexpr double ARROW = 36; // pixels

using Corners = std::vector<Spot>;

/// Places of the enlarged picture; a polygon of a file may lie anywhere.
Corners cornersOf(SpyShape const& shape, RgbImage const& image, uint32_t scale)
{
    auto const pixels = shape.points.denormalize(int(image.width / scale), int(image.height / scale));
    auto const place = [&](int value) { return double(std::clamp(value, -10000, 10000)) * scale; };
    Corners corners;
    for (auto const& point : pixels.points())
        corners.push_back({place(point.x), place(point.y)});
    return corners;
}

void fill(RgbImage& image, Corners const& corners)
{
    for (uint32_t y = 0; y < image.height; ++y) {
        std::vector<double> crossings;
        double const row = y + 0.5;
        for (size_t i = 0; i < corners.size(); ++i) {
            Spot const a = corners[i], b = corners[(i + 1) % corners.size()];
            if ((a.y <= row) != (b.y <= row))
                crossings.push_back(a.x + (row - a.y) / (b.y - a.y) * (b.x - a.x));
        }
        std::sort(crossings.begin(), crossings.end());
        for (size_t i = 0; i + 1 < crossings.size(); i += 2)
            fillBox(image, {crossings[i], double(y)}, crossings[i + 1] - crossings[i], 1, OUTLINE, FILL);
    }
}

void line(RgbImage& image, Spot from, Spot to)
{
    drawLine(image, from, to, 4, SHADE);
    drawLine(image, from, to, 2, OUTLINE);
}

void label(RgbImage& image, Spot place, rktl::String const& text)
{
    double const width = double(text.size() * TEXT_COLUMNS * TEXT_SCALE), height = TEXT_ROWS * TEXT_SCALE;
    Spot const corner = {std::clamp(place.x + 5, 0.0, std::max(0.0, image.width - width)),
        std::clamp(place.y + 4, 0.0, std::max(0.0, image.height - height))};
    fillBox(image, {corner.x - 2, corner.y - 2}, width + 2, height, SHADE, 0.5);
    drawText(image, int32_t(corner.x), int32_t(corner.y), text, TEXT_SCALE, OUTLINE);
}

/// From the middle of a line to the side of it that the way means: right of a line steeper than 45 degrees, else below it, or the
/// other side.
void arrow(RgbImage& image, Spot from, Spot to, int32_t way)
{
    double const dx = to.x - from.x, dy = to.y - from.y, length = std::hypot(dx, dy);
    if (length == 0)
        return;
    Spot normal = {-dy / length, dx / length};
    bool const isSteep = std::fabs(dy) > std::fabs(dx);
    if ((isSteep ? normal.x : normal.y) < 0)
        normal = {-normal.x, -normal.y};
    double const reach = way == LineCrossing<float>::rightOrBelow ? ARROW : -ARROW;
    Spot const middle = {(from.x + to.x) / 2, (from.y + to.y) / 2};
    Spot const tip = {middle.x + normal.x * reach, middle.y + normal.y * reach};
    drawArrow(image, middle, tip, 5, SHADE);
    drawArrow(image, middle, tip, 2.5, OUTLINE);
}

void paintShape(RgbImage& image, uint32_t scale, SpyShape const& shape)
{
    Corners const corners = cornersOf(shape, image, scale);
    if (corners.size() < 2)
        return;
    if (corners.size() == 2) {
        line(image, corners[0], corners[1]);
        for (int32_t const way : {LineCrossing<float>::rightOrBelow, LineCrossing<float>::leftOrAbove})
            if (shape.way == LineCrossing<float>::bothWays || shape.way == way)
                arrow(image, corners[0], corners[1], way);
    } else {
        fill(image, corners);
        for (size_t i = 0; i < corners.size(); ++i)
            line(image, corners[i], corners[(i + 1) % corners.size()]);
    }
    label(image, corners[0], shape.label);
}

} // namespace

void paintSpy(RgbImage& image, uint32_t scale, FrameEventSpy const& spy)
{
    std::vector<SpyShape> shapes;
    spy.getShapes(shapes);
    for (SpyShape const& shape : shapes)
        paintShape(image, scale, shape);
}

} // namespace tools
