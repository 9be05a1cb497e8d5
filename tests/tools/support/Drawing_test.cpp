#include "support/Drawing.h"

#include <gtest/gtest.h>

using namespace tools;

namespace {

constexpr Rgb WHITE = {255, 255, 255};

/// One character for each pixel: "#" white, "." black, "+" between.
std::vector<std::string> shown(RgbImage const& image)
{
    std::vector<std::string> rows;
    for (uint32_t y = 0; y < image.height; ++y) {
        rows.emplace_back();
        for (uint32_t x = 0; x < image.width; ++x)
            rows.back() += image.at(x, y) == WHITE ? '#' : image.at(x, y) == Rgb{} ? '.' : '+';
    }
    return rows;
}

} // namespace

TEST(Drawing, BoxesAndLinesKeepToTheirPixelsAndToThePicture)
{
    RgbImage box(6, 5);
    drawBox(box, {1, 1}, 4, 3, 1, WHITE);
    EXPECT_EQ((std::vector<std::string>{"......", ".####.", ".#..#.", ".####.", "......"}), shown(box));

    RgbImage line(5, 3);
    drawLine(line, {-10, 1.5}, {100, 1.5}, 1, WHITE); // along the middle of row 1, beyond both sides
    EXPECT_EQ((std::vector<std::string>{".....", "#####", "....."}), shown(line));

    RgbImage outside(3, 3);
    drawBox(outside, {-9, -9}, 4, 4, 2, WHITE);
    fillBox(outside, {3, 0}, 5, 5, WHITE, 1);

    EXPECT_EQ((std::vector<std::string>{"...", "...", "..."}), shown(outside));
}

TEST(Drawing, SectorsOpenUpwardsForHeadingsAboveTheHorizon)
{
    auto inSector = [](Sector const& sector, uint32_t x, uint32_t y) {
        RgbImage image(41, 41);
        fillSector(image, {20.5, 20.5}, 20, sector, WHITE, 1);
        return image.at(x, y) == WHITE;
    };
    struct {
        char const* why;
        Sector sector;
        bool right, up, left, down;
    } const cases[] = {
        {"to the right", {0, 30}, true, false, false, false},
        {"90 is up, where y falls", {90, 30}, false, true, false, false},
        {"across the jump of the angle at 180", {180, 30}, false, false, true, false},
        {"350 and 10 lie 20 apart", {350, 30}, true, false, false, false},
        {"down, and a bit more than a quarter to either side", {270, 100}, true, false, true, true},
        {"all round", {45, 180}, true, true, true, true},
        {"nothing within no tolerance", {90, 0}, false, false, false, false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(c.right, inSector(c.sector, 35, 20));
        EXPECT_EQ(c.up, inSector(c.sector, 20, 5));
        EXPECT_EQ(c.left, inSector(c.sector, 5, 20));
        EXPECT_EQ(c.down, inSector(c.sector, 20, 35));
    }
}
