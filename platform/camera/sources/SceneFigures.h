#pragma once

#include "camera/sources/Canvas.h"

#include <string>
#include <vector>

namespace camera {

/// What moves in a scene, as pictures of one size that are shown in turn (the steps of a walk), all facing right.
struct SceneFigure {
    std::string kind; // "car", "van", "bus" or "person"
    std::vector<Canvas> steps;
    int32_t stepTime = 1; // ms for each picture

    int32_t width() const { return steps.front().width(); }
    int32_t height() const { return steps.front().height(); }
    SceneFigure mirrored() const;
};

SceneFigure makeCar(Colour body);
SceneFigure makeVan(Colour body);
SceneFigure makeBus(Colour body);

/// height: pixels, at least 24; the width is about a third of it.
SceneFigure makePerson(Colour jacket, Colour trousers, int32_t height);

} // namespace camera
