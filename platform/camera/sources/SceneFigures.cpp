#include "camera/sources/SceneFigures.h"

namespace camera {

namespace {

Colour const GLASS = Colour::rgb(150, 190, 205);
Colour const TYRE = Colour::gray(16);
Colour const HUB = Colour::gray(150);
Colour const HEADLIGHT = Colour::rgb(250, 245, 200);
Colour const REAR_LIGHT = Colour::rgb(220, 30, 30);
Colour const SKIN = Colour::rgb(215, 170, 140);
Colour const HAIR = Colour::rgb(40, 30, 25);

void wheel(Canvas& canvas, int32_t x, int32_t size)
{
    int32_t const y = canvas.height() - size;
    canvas.ellipse(x, y, size, size, TYRE);
    canvas.ellipse(x + size / 4, y + size / 4, size / 2, size / 2, HUB);
}

void lights(Canvas& canvas, int32_t y)
{
    canvas.rectangle(canvas.width() - 4, y, 4, 4, HEADLIGHT);
    canvas.rectangle(0, y, 3, 5, REAR_LIGHT);
}

SceneFigure vehicle(char const* kind, Canvas canvas)
{
    SceneFigure figure;
    figure.kind = kind;
    figure.steps.push_back(std::move(canvas));
    return figure;
}

/// stride: pixels between the feet.
Canvas person(Colour jacket, Colour trousers, int32_t height, int32_t stride)
{
    int32_t const width = height / 3, middle = width / 2, head = height / 5;
    int32_t const shoulders = head, hips = height * 11 / 20, leg = height - hips;
    int32_t const limb = height / 9;
    Canvas canvas(width, height);
    canvas.trapezium(hips, leg, middle - limb / 2, limb, middle - limb / 2 - stride, limb, trousers.lighter(-10));
    canvas.trapezium(hips, leg, middle - limb / 2, limb, middle - limb / 2 + stride, limb, trousers);
    canvas.trapezium(shoulders, hips - shoulders + 1, middle - width / 4, width / 2, middle - width / 4, width / 2, jacket);
    canvas.ellipse(middle - width / 4 - 1, shoulders, width / 2 + 2, height / 5, jacket);
    canvas.trapezium(
        shoulders + 2, height * 3 / 10, middle - limb / 2, limb, middle - limb / 2 + stride / 2, limb, jacket.lighter(-25));
    canvas.ellipse(middle - head / 2, 0, head, head + 1, SKIN);
    canvas.ellipse(middle - head / 2, 0, head, head / 2, HAIR);
    return canvas;
}

} // namespace

SceneFigure SceneFigure::mirrored() const
{
    SceneFigure other = *this;
    for (Canvas& step : other.steps)
        step.mirror();
    return other;
}

SceneFigure makeCar(Colour body)
{
    Canvas canvas(88, 36);
    canvas.trapezium(0, 15, 26, 34, 15, 57, body.lighter(-12));
    canvas.trapezium(3, 11, 29, 12, 22, 19, GLASS);
    canvas.trapezium(3, 11, 44, 13, 44, 22, GLASS);
    canvas.trapezium(13, 8, 4, 78, 0, 88, body);
    canvas.rectangle(0, 20, 88, 10, body);
    canvas.rectangle(2, 27, 84, 4, body.lighter(-45));
    canvas.rectangle(42, 15, 1, 13, body.lighter(-40));
    lights(canvas, 17);
    wheel(canvas, 12, 16);
    wheel(canvas, 60, 16);
    return vehicle("car", std::move(canvas));
}

SceneFigure makeVan(Colour body)
{
    Canvas canvas(104, 46);
    canvas.rectangle(0, 2, 72, 36, body);
    canvas.trapezium(2, 18, 72, 10, 72, 24, body);
    canvas.rectangle(72, 19, 32, 19, body);
    canvas.trapezium(5, 13, 74, 8, 74, 18, GLASS);
    canvas.rectangle(0, 33, 104, 5, body.lighter(-40));
    canvas.rectangle(68, 4, 1, 30, body.lighter(-40));
    lights(canvas, 24);
    wheel(canvas, 14, 17);
    wheel(canvas, 74, 17);
    return vehicle("van", std::move(canvas));
}

SceneFigure makeBus(Colour body)
{
    Canvas canvas(150, 48);
    canvas.rectangle(0, 1, 150, 40, body);
    for (int32_t x = 5; x < 130; x += 20)
        canvas.rectangle(x, 6, 16, 13, GLASS);
    canvas.rectangle(134, 6, 14, 26, GLASS);
    canvas.rectangle(0, 24, 132, 4, body.lighter(-45));
    lights(canvas, 33);
    wheel(canvas, 24, 16);
    wheel(canvas, 106, 16);
    return vehicle("bus", std::move(canvas));
}

SceneFigure makePerson(Colour jacket, Colour trousers, int32_t height)
{
    SceneFigure figure;
    figure.kind = "person";
    figure.stepTime = 160;
    int32_t const stride = height / 9;
    for (int32_t step : {0, stride / 2, stride, stride / 2})
        figure.steps.push_back(person(jacket, trousers, height, step));
    return figure;
}

} // namespace camera
