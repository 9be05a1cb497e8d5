#pragma once

#include "support/RgbImage.h"

namespace tools {

/// A place in a picture, in pixels; the middle of the upper left pixel is (0.5, 0.5). Everything drawn is clipped to the
/// picture and has smooth edges.
struct Spot {
    double x = 0;
    double y = 0;
};

/// thickness: pixels; ends are round.
void drawLine(RgbImage& image, Spot from, Spot to, double thickness, Rgb colour);

/// A line with a head of two strokes at `to`.
void drawArrow(RgbImage& image, Spot from, Spot to, double thickness, Rgb colour);

void drawDot(RgbImage& image, Spot centre, double radius, Rgb colour);

/// The outline of a rectangle, its line around the inside.
void drawBox(RgbImage& image, Spot topLeft, double width, double height, double thickness, Rgb colour);

void fillBox(RgbImage& image, Spot topLeft, double width, double height, Rgb colour, double opacity);

/// What a direction in the picture looks like: where it points, and how far off to either side it may be.
struct Sector {
    double heading = 0;   // degrees: 0 right, 90 up, 180 left, 270 down
    double tolerance = 0; // degrees; from 180 on the sector is a whole disc
};

/// A sector of a disc, filled. opacity: 0 to 1.
void fillSector(RgbImage& image, Spot centre, double radius, Sector const& sector, Rgb colour, double opacity);

/// The point that lies in a direction (degrees, as above).
Spot pointAt(Spot centre, double heading, double distance);

} // namespace tools
