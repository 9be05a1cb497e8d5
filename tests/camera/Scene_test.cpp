#include "camera/sources/Scene.h"
#include "camera/sources/SceneSource.h"

#include <gtest/gtest.h>

#include <map>

using namespace camera;

namespace {

Picture flat(uint32_t width, uint32_t height, uint8_t luma)
{
    Picture picture;
    picture.resize(width, height);
    std::fill(picture.bytes.begin(), picture.bytes.end(), uint8_t(128));
    std::fill_n(picture.luma(), picture.lumaSize(), luma);
    return picture;
}

SceneActor whiteBlock(int32_t x, int32_t bottom, int32_t speedX, int32_t speedY)
{
    SceneActor actor;
    actor.id = 1;
    actor.figure.kind = "block";
    actor.figure.steps.emplace_back(10, 6);
    actor.figure.steps.back().rectangle(0, 0, 10, 6, Colour::gray(255));
    actor.x = x;
    actor.bottom = bottom;
    actor.speedX = speedX;
    actor.speedY = speedY;
    actor.start = 100;
    actor.stop = 5000;
    return actor;
}

/// "x,y widthxheight" of all pixels far brighter than the backdrop: shadows only darken.
std::string brightBox(Picture const& picture)
{
    uint32_t left = picture.width, right = 0, top = picture.height, bottom = 0;
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x)
            if (picture.luma()[y * picture.width + x] > 200) {
                left = std::min(left, x), right = std::max(right, x + 1);
                top = std::min(top, y), bottom = std::max(bottom, y + 1);
            }
    if (right == 0)
        return "";
    return std::to_string(left) + "," + std::to_string(top) + " " + std::to_string(right - left) + "x" +
        std::to_string(bottom - top);
}

std::string truthBox(Scene const& scene, int64_t time)
{
    std::string text;
    for (SceneObject const& object : scene.objectsAt(time))
        text += std::to_string(object.x) + "," + std::to_string(object.y) + " " + std::to_string(object.width) + "x" +
            std::to_string(object.height);
    return text;
}

double meanLuma(Picture const& picture)
{
    double sum = 0;
    for (size_t i = 0; i < picture.lumaSize(); ++i)
        sum += picture.luma()[i];
    return sum / double(picture.lumaSize());
}

bool isVehicle(SceneActor const& actor)
{
    return actor.figure.kind != "person";
}

bool overlap(SceneObject const& a, SceneObject const& b)
{
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

/// The first two vehicles whose boxes overlap, and when.
std::string firstCrash(Scene const& scene)
{
    for (int64_t time = 0; time < scene.duration(); time += 40) {
        std::vector<SceneObject> vehicles;
        for (SceneObject const& object : scene.objectsAt(time)) {
            if (!isVehicle(*object.actor))
                continue;
            for (SceneObject const& other : vehicles)
                if (overlap(object, other))
                    return std::to_string(object.actor->id) + " and " + std::to_string(other.actor->id) + " at " +
                        std::to_string(time);
            vehicles.push_back(object);
        }
    }
    return "";
}

} // namespace

TEST(Scene, TheTruthIsWhereThePixelsAre)
{
    struct {
        SceneActor actor;
        int64_t time;
        char const* box;
    } const cases[] = {
        {whiteBlock(5, 20, 33, 0), 99, ""},
        {whiteBlock(5, 20, 33, 0), 100, "5,14 10x6"},
        {whiteBlock(5, 20, 33, 0), 1100, "38,14 10x6"},
        {whiteBlock(55, 20, 33, 0), 200, "58,14 5x6"}, // 3.3 pixels on: cut at the right edge of 63
        {whiteBlock(-8, 20, -10, 0), 150, "0,14 1x6"}, // half a pixel to the left of -8: the pixel at -9
        {whiteBlock(5, 4, 0, -10), 100, "5,0 10x4"},   // cut at the top
        {whiteBlock(5, 45, 3, 10), 300, "5,41 10x4"},  // cut at the bottom of 45
        {whiteBlock(5, 20, -100, 0), 300, ""},         // just gone on the left
        {whiteBlock(5, 20, 0, 0), 5000, ""},
    };
    Picture picture;
    for (auto const& c : cases) {
        SCOPED_TRACE(std::string(c.box) + " at " + std::to_string(c.time));
        Scene const scene(flat(63, 45, 90), {c.actor}, {}, 6000);
        scene.draw(c.time, 7, picture);
        EXPECT_EQ(c.box, truthBox(scene, c.time));
        EXPECT_EQ(c.box, brightBox(picture));
    }
}

TEST(Scene, HeadingsCountFromTheRightCounterClockwise)
{
    struct {
        int32_t x, y;
        double heading;
    } const cases[] = {{50, 0, 0}, {50, -50, 45}, {0, -9, 90}, {-7, 0, 180}, {0, 3, 270}, {4, 4, 315}};
    for (auto const& c : cases)
        EXPECT_DOUBLE_EQ(c.heading, whiteBlock(0, 0, c.x, c.y).heading()) << c.x << " " << c.y;
}

TEST(Scene, TwoInstancesDrawTheSameBytesAndEachFrameHasItsOwnNoise)
{
    for (SceneName const& name : sceneNames()) {
        SCOPED_TRACE(name.name);
        SceneSource a(std::string(name.name), {2, 1}), b(std::string(name.name), {2, 1});
        Picture first, second, before;
        while (a.advance()) {
            ASSERT_TRUE(b.advance());
            ASSERT_EQ(a.time(), b.time());
            a.picture(first);
            b.picture(second);
            ASSERT_TRUE(first == second);
            ASSERT_FALSE(before == first);
            before = first;
        }
        EXPECT_FALSE(b.advance());
    }
    EXPECT_THROW(makeScene("nowhere"), SourceError);
}

// What the analysis needs of a street: places that have seen traffic, and vehicles that do not run into one another.
TEST(Scene, StreetsHaveOneWrongWayDriverInTrafficThatKeepsItsLanes)
{
    for (char const* name : {"street", "twoway"}) {
        SCOPED_TRACE(name);
        Scene const scene = makeScene(name);
        std::map<int32_t, std::vector<SceneActor const*>> lanes; // by the row of the wheels
        SceneActor const* wrong = nullptr;
        for (SceneActor const& actor : scene.actors()) {
            if (actor.wrongWay) {
                EXPECT_EQ(nullptr, wrong);
                wrong = &actor;
            } else if (isVehicle(actor)) {
                lanes[actor.bottom].push_back(&actor);
            }
        }
        ASSERT_NE(nullptr, wrong);
        ASSERT_EQ(4u, lanes.size());
        for (auto const& [bottom, vehicles] : lanes) {
            EXPECT_LE(vehicles.front()->start, wrong->start - 10000);
            for (SceneActor const* vehicle : vehicles)
                EXPECT_EQ(vehicles.front()->heading(), vehicle->heading());
        }
        EXPECT_EQ(180, std::abs(wrong->heading() - lanes.at(wrong->bottom).front()->heading()));
        EXPECT_LT(wrong->stop, scene.duration());

        EXPECT_EQ("", firstCrash(scene));
    }
}

TEST(Scene, ThePlazaShowsEightHeadingsOneAtATime)
{
    Scene const scene = makeScene("plaza");
    std::vector<double> headings;
    uint32_t last = 0;
    for (int64_t time = 0; time < scene.duration(); time += 20) {
        auto const objects = scene.objectsAt(time);
        ASSERT_LE(objects.size(), 1u) << time;
        if (!objects.empty() && objects.front().actor->id != last) {
            last = objects.front().actor->id;
            headings.push_back(objects.front().actor->heading());
            EXPECT_TRUE(objects.front().width <= 2 || objects.front().height <= 2) << "comes in at an edge";
        }
    }
    EXPECT_EQ((std::vector<double>{0, 45, 90, 135, 180, 225, 270, 315}), headings);
    EXPECT_TRUE(scene.objectsAt(scene.duration() - 1).empty());
}

TEST(Scene, TheLightFallsAndComesBackAndOtherwiseOnlyDrifts)
{
    Scene const scene = makeScene("lights");
    Picture picture;
    auto meanAt = [&](int64_t time) {
        scene.draw(time, uint64_t(time), picture);
        return meanLuma(picture);
    };
    double const before = meanAt(11999);
    EXPECT_NEAR(0.45, meanAt(12000) / before, 0.01); // rounding down costs up to half a level of about 130
    EXPECT_NEAR(0.45, meanAt(19999) / before, 0.03); // with the drift of 3% in eight seconds
    EXPECT_NEAR(1.0, meanAt(20000) / before, 0.03);

    Scene const empty = makeScene("empty");
    for (int64_t time = 0; time < empty.duration(); time += 500)
        ASSERT_NEAR(1024, empty.gain(time), 30);
}
