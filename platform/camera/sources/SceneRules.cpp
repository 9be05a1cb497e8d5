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

/// One, then two with 48 pixels between their left edges, then one.
Scene makePass()
{
    SceneSchedule schedule(WIDTH);
    schedule.cross(walker(RED), 84, PACE, 6000);
    schedule.cross(walker(WHITE), 84, PACE, 16000);
    schedule.cross(walker(YELLOW), 84, PACE, 17600);
    schedule.cross(walker(BLUE), 84, -PACE, 28000);
    return inFrontOfTheGate(schedule, 44000);
}

/// Two run, to the right and to the left; one walks fast; one runs as far as column 76 and back.
Scene makeSprint()
{
    SceneSchedule schedule(WIDTH);
    schedule.cross(walker(RED), 84, 2 * PACE, 6000);
    schedule.cross(walker(WHITE), 84, -2 * PACE, 14000);
    schedule.cross(walker(YELLOW), 84, 40, 22000);
    schedule.follow(walker(RED), -12, 84, 32000, {{1600, 2 * PACE, 0}, {1600, -2 * PACE, 0}});
    return inFrontOfTheGate(schedule, 40000);
}

/// In the middle of the picture two stand for 6 s, then six for 2 s, then six for 8 s.
Scene makeCrowd()
{
    SceneSchedule schedule(WIDTH);
    // Feet on rows 64 and 104. From the left to columns 42, 58 and 74, or from the right to 106, 90 and 74, and back again.
    auto const gather = [&](int64_t start, int64_t stay, int32_t people) {
        for (int32_t i = 0; i < people; ++i) {
            bool const fromLeft = i % 2 == 0;
            int32_t const order = i / 2, speed = fromLeft ? 2 * PACE : -2 * PACE;
            int64_t const time = 1400 - order * 270; // the last comes least far
            schedule.follow(walker(i % 3 == 0    ? WHITE
                                    : i % 3 == 1 ? RED
                                                 : YELLOW),
                fromLeft ? -12 : WIDTH, fromLeft ? 64 : 104, start + order * 500,
                {{time, speed, 0}, {stay, 0, 0}, {time, -speed, 0}});
        }
    };
    gather(7000, 6000, 2);
    gather(20000, 2000, 6);
    gather(32000, 8000, 6);
    return inFrontOfTheGate(schedule, 50000);
}

} // namespace camera
