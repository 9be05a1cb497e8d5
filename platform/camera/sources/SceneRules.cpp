#include "camera/sources/SceneRules.h"

#include "camera/sources/SceneBackdrop.h"
#include "camera/sources/SceneSchedule.h"

namespace camera {

namespace {

constexpr int32_t WIDTH = 160; // of the picture that paintGate paints
constexpr int32_t PACE = 30;   // pixels a second of who walks

SceneFigure walker(Colour jacket)
{
    return makePerson(jacket, Colour::gray(22), 36); // 12 wide
}

Colour const RED = Colour::rgb(200, 30, 36);
Colour const BLUE = Colour::rgb(30, 44, 110);
Colour const WHITE = Colour::rgb(236, 232, 224);
Colour const YELLOW = Colour::rgb(226, 210, 70);

Scene inFrontOfTheGate(SceneSchedule& schedule, int64_t duration)
{
    Picture backdrop;
    paintGate(backdrop);
    return Scene(std::move(backdrop), schedule.take(), {}, duration);
}

SceneFigure suitcase()
{
    SceneFigure figure;
    figure.kind = "case";
    Canvas canvas(34, 34);
    canvas.rectangle(0, 0, 34, 34, Colour::rgb(150, 92, 40));
    for (int32_t x = 2; x < 34; x += 8) // straps
        canvas.rectangle(x, 0, 3, 34, Colour::rgb(236, 200, 120));
    figure.steps.push_back(std::move(canvas));
    return figure;
}

} // namespace

/// Feet on row 84, or 118 along the bottom: middles on rows 66 and 100.
Scene makeYard()
{
    SceneSchedule schedule(WIDTH);
    schedule.cross(walker(RED), 84, PACE, 6000);
    schedule.cross(walker(WHITE), 84, -PACE, 14000);
    schedule.follow(walker(YELLOW), -12, 84, 22000, {{4000, PACE, 0}, {4000, -PACE, 0}}); // as far as column 108
    schedule.follow(walker(RED), -12, 84, 32000, {{2400, PACE, 0}, {2400, -PACE, 0}});    // as far as column 60
    schedule.cross(walker(WHITE), 118, PACE, 39000);
    return inFrontOfTheGate(schedule, 46000);
}

/// To column 63, and on after a while.
Scene makeBench()
{
    SceneSchedule schedule(WIDTH);
    schedule.follow(walker(RED), -12, 90, 6000, {{2500, PACE, 0}, {8000, 0, 0}, {4000, PACE, 0}});
    schedule.follow(walker(WHITE), -12, 90, 23000, {{2500, PACE, 0}, {3000, 0, 0}, {4000, PACE, 0}});
    schedule.follow(walker(YELLOW), -12, 90, 35000, {{2000, PACE, 0}, {12000, 3, 0}, {4000, PACE, 0}});
    return inFrontOfTheGate(schedule, 54000);
}

/// The door is where the right post stands, from column 110 to 150.
Scene makeDoor()
{
    SceneSchedule schedule(WIDTH);
    schedule.follow(walker(RED), -12, 84, 6000, {{4500, PACE, 0}});      // gone at column 123
    schedule.follow(walker(YELLOW), 126, 84, 14000, {{5000, -PACE, 0}}); // out at the left edge
    schedule.cross(walker(WHITE), 84, PACE, 24000);
    return inFrontOfTheGate(schedule, 34000);
}

Scene makeAsset()
{
    SceneSchedule schedule(WIDTH);
    auto const shown = [&](int64_t from, int64_t to) { schedule.add(suitcase(), 64, 80, 0, 0, from, to - from); };
    // In front of it for 3 s.
    schedule.follow(walker(RED), -12, 88, 9000, {{3000, PACE, 0}, {3000, 0, 0}, {3000, PACE, 0}});
    // Taken by who walks by.
    shown(0, 27000);
    schedule.cross(walker(WHITE), 88, PACE, 24000);
    // Put back, then gone by itself.
    shown(50000, 70000);
    return inFrontOfTheGate(schedule, 90000);
}

} // namespace camera
