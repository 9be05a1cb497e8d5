#include "support/Drawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tools {

namespace {

constexpr double RADIANS = std::numbers::pi / 180.0;

void blend(uint8_t* pixel, Rgb colour, double opacity)
{
    auto mix = [&](uint8_t& byte, uint8_t wanted) { byte = uint8_t(std::lround(byte + (wanted - byte) * opacity)); };
    mix(pixel[0], colour.red);
    mix(pixel[1], colour.green);
    mix(pixel[2], colour.blue);
}

/// Paints the pixels between two corners, each as far as coverage(its middle), 0 to 1, says.
template <class Coverage> void paint(RgbImage& image, Spot low, Spot high, Rgb colour, Coverage coverage)
{
    auto clip = [](double value, uint32_t size) { return uint32_t(std::clamp(value, 0.0, double(size))); };
    for (uint32_t y = clip(std::floor(low.y), image.height); y < clip(std::ceil(high.y), image.height); ++y)
        for (uint32_t x = clip(std::floor(low.x), image.width); x < clip(std::ceil(high.x), image.width); ++x) {
            double const share = coverage(Spot{x + 0.5, y + 0.5});
            if (share > 0)
                blend(image.pixel(x, y), colour, std::min(share, 1.0));
        }
}

double distance(Spot a, Spot b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

double distanceToSegment(Spot point, Spot from, Spot to)
{
    double const dx = to.x - from.x, dy = to.y - from.y, square = dx * dx + dy * dy;
    double const along = square > 0 ? std::clamp(((point.x - from.x) * dx + (point.y - from.y) * dy) / square, 0.0, 1.0) : 0.0;
    return distance(point, {from.x + along * dx, from.y + along * dy});
}

/// How much of the pixel interval around `middle` lies from low to high.
double overlap(double middle, double low, double high)
{
    return std::max(0.0, std::min(middle + 0.5, high) - std::max(middle - 0.5, low));
}

} // namespace

void drawLine(RgbImage& image, Spot from, Spot to, double thickness, Rgb colour)
{
    double const reach = thickness / 2 + 0.5; // where coverage has fallen to 0
    Spot const low = {std::min(from.x, to.x) - reach, std::min(from.y, to.y) - reach};
    Spot const high = {std::max(from.x, to.x) + reach, std::max(from.y, to.y) + reach};
    paint(image, low, high, colour, [&](Spot pixel) { return reach - distanceToSegment(pixel, from, to); });
}

void drawArrow(RgbImage& image, Spot from, Spot to, double thickness, Rgb colour)
{
    drawLine(image, from, to, thickness, colour);
    double const back = std::atan2(to.y - from.y, from.x - to.x) / RADIANS; // y grows downwards, headings upwards
    double const size = std::min(4 * thickness + 2, distance(from, to));
    drawLine(image, to, pointAt(to, back - 30, size), thickness, colour);
    drawLine(image, to, pointAt(to, back + 30, size), thickness, colour);
}

void drawDot(RgbImage& image, Spot centre, double radius, Rgb colour)
{
    drawLine(image, centre, centre, 2 * radius, colour);
}

void drawBox(RgbImage& image, Spot topLeft, double width, double height, double thickness, Rgb colour)
{
    fillBox(image, topLeft, width, thickness, colour, 1);
    fillBox(image, {topLeft.x, topLeft.y + height - thickness}, width, thickness, colour, 1);
    double const side = height - 2 * thickness;
    fillBox(image, {topLeft.x, topLeft.y + thickness}, thickness, side, colour, 1);
    fillBox(image, {topLeft.x + width - thickness, topLeft.y + thickness}, thickness, side, colour, 1);
}

void fillBox(RgbImage& image, Spot topLeft, double width, double height, Rgb colour, double opacity)
{
    Spot const high = {topLeft.x + width, topLeft.y + height};
    paint(image, topLeft, high, colour,
        [&](Spot pixel) { return overlap(pixel.x, topLeft.x, high.x) * overlap(pixel.y, topLeft.y, high.y) * opacity; });
}

void fillSector(RgbImage& image, Spot centre, double radius, Sector const& sector, Rgb colour, double opacity)
{
    paint(image, {centre.x - radius, centre.y - radius}, {centre.x + radius, centre.y + radius}, colour, [&](Spot pixel) {
        double const away = distance(pixel, centre);
        double const angle = std::atan2(centre.y - pixel.y, pixel.x - centre.x) / RADIANS;
        double const off = std::fabs(std::remainder(angle - sector.heading, 360.0));
        // Pixels inside the straight sides: the angle left, as an arc at this distance.
        double const inside = sector.tolerance >= 180 ? 1.0 : (sector.tolerance - off) * RADIANS * away + 0.5;
        return std::clamp(inside, 0.0, 1.0) * std::clamp(radius - away + 0.5, 0.0, 1.0) * opacity;
    });
}

Spot pointAt(Spot centre, double heading, double distance)
{
    return {centre.x + distance * std::cos(heading * RADIANS), centre.y - distance * std::sin(heading * RADIANS)};
}

} // namespace tools
