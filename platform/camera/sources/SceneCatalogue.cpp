#include "camera/sources/FrameSource.h"
#include "camera/sources/Scene.h"
#include "camera/sources/SceneBackdrop.h"
#include "camera/sources/SceneRandom.h"
#include "camera/sources/SceneRules.h"
#include "camera/sources/SceneSchedule.h"

namespace camera {

namespace {

constexpr int64_t STREET_DURATION = 60000;
constexpr int64_t WRONG_WAY_START = 24000;
constexpr int64_t SAFETY = 1200; // ms between the wrong-way driver and the traffic of its lane

Colour const BODIES[] = {Colour::gray(228), Colour::gray(178), Colour::rgb(232, 192, 50), Colour::rgb(112, 172, 230),
    Colour::rgb(232, 66, 58), Colour::rgb(128, 196, 96), Colour::rgb(236, 140, 44), Colour::gray(14)};
Colour const JACKETS[] = {Colour::rgb(30, 34, 40), Colour::rgb(226, 210, 70), Colour::rgb(36, 46, 92), Colour::rgb(236, 232, 224),
    Colour::rgb(110, 20, 28)};

struct Lane {
    int32_t speed;  // pixels a second, negative to the left
    int64_t offset; // ms until its first vehicle
};

SceneFigure randomVehicle(SceneRandom& random)
{
    Colour const body = BODIES[random.range(0, int32_t(std::size(BODIES)) - 1)];
    int32_t const kind = random.range(0, 9);
    return kind < 6 ? makeCar(body) : kind < 9 ? makeVan(body) : makeBus(body);
}

/// wrongWay: the lane that has to stay free for the wrong-way driver.
void fillLane(SceneSchedule& schedule, Lane const& lane, int32_t index, bool wrongWay, SceneRandom& random)
{
    int64_t const clearFrom = WRONG_WAY_START - SAFETY, clearTo = WRONG_WAY_START + 6100 + SAFETY;
    for (int64_t start = TRAFFIC_START + lane.offset;;) {
        SceneFigure const figure = randomVehicle(random);
        int64_t const crossing = schedule.crossingTime(figure, lane.speed);
        if (wrongWay && start < clearTo && start + crossing > clearFrom)
            start = clearTo;
        if (start + crossing >= STREET_DURATION)
            return;
        schedule.cross(figure, streetLaneBottom(index), lane.speed, start);
        start += random.range(2600, 4600);
    }
}

void fillPavement(SceneSchedule& schedule, int32_t bottom, int32_t speed, int64_t offset, SceneRandom& random)
{
    for (int64_t start = TRAFFIC_START + offset; start < STREET_DURATION; start += random.range(7000, 10000)) {
        Colour const jacket = JACKETS[random.range(0, int32_t(std::size(JACKETS)) - 1)];
        Colour const trousers = random.range(0, 1) ? Colour::rgb(28, 32, 48) : Colour::gray(20);
        schedule.cross(makePerson(jacket, trousers, random.range(37, 41)), bottom, speed, start);
    }
}

Scene makeStreet(std::vector<Lane> const& lanes, int32_t wrongWayLane, int32_t farWalk, int32_t nearWalk, uint32_t seed)
{
    SceneRandom random(seed);
    SceneSchedule schedule(STREET_WIDTH);
    for (int32_t i = 0; i < STREET_LANES; ++i)
        fillLane(schedule, lanes[size_t(i)], i, i == wrongWayLane, random);
    fillPavement(schedule, STREET_FAR_PAVEMENT, farWalk, 500, random);
    fillPavement(schedule, STREET_NEAR_PAVEMENT, nearWalk, 2500, random);
    int32_t const against = lanes[size_t(wrongWayLane)].speed > 0 ? -120 : 120;
    schedule.cross(makeCar(Colour::gray(228)), streetLaneBottom(wrongWayLane), against, WRONG_WAY_START).wrongWay = true;

    bool const twoWay = lanes.front().speed * lanes.back().speed < 0;
    Picture backdrop;
    paintStreet(backdrop, twoWay);
    return Scene(std::move(backdrop), schedule.take(), {}, STREET_DURATION);
}

Scene makeGate()
{
    SceneSchedule schedule(160);
    schedule.cross(makePerson(Colour::rgb(200, 30, 36), Colour::gray(22), 46), 106, 22, 7000);
    schedule.cross(makePerson(Colour::rgb(30, 44, 110), Colour::gray(20), 48), 108, -22, 18000);
    Picture backdrop;
    paintGate(backdrop);
    return Scene(std::move(backdrop), schedule.take(), {}, 30000);
}

/// One after the other through the middle of the square, in eight headings from 0 to 315 degrees.
Scene makePlaza()
{
    constexpr struct {
        int32_t speedX, speedY;
        int64_t time; // ms, long enough to come in and go out
    } WALKS[] = {{60, 0, 6400}, {42, -42, 7000}, {0, -60, 5200}, {-42, -42, 7000}, {-60, 0, 6400}, {-42, 42, 7000}, {0, 60, 5200},
        {42, 42, 7000}};
    SceneSchedule schedule(320);
    int64_t start = TRAFFIC_START;
    for (auto const& walk : WALKS) {
        SceneFigure const person = makePerson(JACKETS[3], Colour::gray(20), 42);
        int32_t const x = 160 - person.width() / 2 - int32_t(walk.speedX * walk.time / 2000);
        int32_t const bottom = 120 + person.height() / 2 - int32_t(walk.speedY * walk.time / 2000);
        schedule.add(person, x, bottom, walk.speedX, walk.speedY, start, walk.time);
        start += walk.time;
    }
    Picture backdrop;
    paintPlaza(backdrop);
    return Scene(std::move(backdrop), schedule.take(), {}, start + 2000);
}

Scene makeCarPark(std::vector<SceneLight> lights, int64_t duration)
{
    Picture backdrop;
    paintCarPark(backdrop);
    return Scene(std::move(backdrop), {}, std::move(lights), duration);
}

} // namespace

std::vector<SceneName> const& sceneNames()
{
    static std::vector<SceneName> const names = {
        {"street", "640x480, 60 s: four lanes to the right, pedestrians, one wrong-way driver to the left from 24 s"},
        {"twoway", "640x480, 60 s: four lanes both ways, pedestrians, one wrong-way driver from 24 s"},
        {"gate", "160x120, 30 s: one person to the right from 7 s, one to the left from 18 s"},
        {"plaza", "320x240, 59 s: one person after the other in the headings 0, 45, 90 and so on to 315 from 5.5 s"},
        {"lights", "320x240, 35 s: nobody moves; the light falls to 45% from 12 s to 20 s"},
        {"empty", "320x240, 60 s: nobody moves; noise and drift of light"},
        {"yard",
            "160x120, 46 s: across to the right, to the left, over the middle and back, not as far as it, and along the bottom"},
        {"bench", "160x120, 54 s: one stands for 8 s from 8.5 s, one for 3 s, one drifts slowly"},
        {"door", "160x120, 34 s: one goes in at the door on the right, one comes out of it, one passes it"},
        {"asset", "160x120, 90 s: a case on a stand is hidden, taken in passing, put back, and gone without a hand near it"},
        {"pass", "160x120, 44 s: one walks by, then two at once, then one"},
        {"sprint", "160x120, 40 s: two run, to the right and to the left, one walks fast, one runs to the middle and back"},
        {"crowd", "160x120, 50 s: two stand in the middle for 6 s, then six for 2 s, then six for 8 s"},
    };
    return names;
}

Scene makeScene(std::string const& name)
{
    if (name == "twoway")
        return makeStreet({{-105, 800}, {-125, 0}, {135, 300}, {110, 1200}}, 3, -38, 40, 3);
    if (name == "street")
        return makeStreet({{105, 800}, {125, 0}, {135, 300}, {110, 1200}}, 1, 38, 40, 5);
    if (name == "gate")
        return makeGate();
    if (name == "plaza")
        return makePlaza();
    if (name == "lights")
        return makeCarPark({{12000, 20000, 461}}, 35000);
    if (name == "empty")
        return makeCarPark({}, 60000);
    if (name == "yard")
        return makeYard();
    if (name == "bench")
        return makeBench();
    if (name == "door")
        return makeDoor();
    if (name == "asset")
        return makeAsset();
    if (name == "pass")
        return makePass();
    if (name == "sprint")
        return makeSprint();
    if (name == "crowd")
        return makeCrowd();
    std::string known;
    for (SceneName const& scene : sceneNames())
        known += (known.empty() ? "" : ", ") + std::string(scene.name);
    throw SourceError("scene:" + name + ": no such scene; there are " + known);
}

} // namespace camera
