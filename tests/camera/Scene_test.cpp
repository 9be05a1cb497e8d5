#include "camera/sources/Scene.h"
#include "camera/sources/SceneSource.h"

#include <gtest/gtest.h>

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

} // namespace

TEST(Scene, TheTruthIsWhereThePixelsAre)
{
    struct {
        SceneActor actor;
        int64_t time;
        char const* box;
    } const cases[] = {
        {whiteBlock(5, 20, 33, 0), 99, ""}, {whiteBlock(5, 20, 33, 0), 1100, "38,14 10x6"},
        {whiteBlock(55, 20, 33, 0), 200, "58,14 5x6"}, // 3.3 pixels on: cut at the right edge of 63
        {whiteBlock(-8, 20, -10, 0), 150, "0,14 1x6"}, // half a pixel to the left of -8: the pixel at -9
        {whiteBlock(5, 4, 0, -10), 100, "5,0 10x4"},   // cut at the top
        {whiteBlock(5, 45, 3, 10), 300, "5,41 10x4"},  // cut at the bottom of 45
        {whiteBlock(5, 20, -100, 0), 300, ""},         // just gone on the left
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
