#include "camera/sources/SceneBackdrop.h"

#include "camera/sources/Canvas.h"

namespace camera {

namespace {

constexpr int32_t FAR_PAVEMENT_TOP = 104;
constexpr int32_t ROAD_TOP = 154;
constexpr int32_t ROAD_BOTTOM = 398;
constexpr int32_t GRASS_TOP = 450;

void paintWindow(Canvas& canvas, int32_t x, int32_t y, int32_t width, int32_t height)
{
    canvas.rectangle(x - 2, y - 2, width + 4, height + 4, Colour::gray(165));
    canvas.rectangle(x, y, width, height, Colour::rgb(45, 58, 72));
    canvas.trapezium(y, height, x + 2, width / 4, x + width / 3, width / 4, Colour::rgb(75, 92, 108));
    canvas.rectangle(x + width / 2, y, 1, height, Colour::gray(165));
}

void paintHouse(Canvas& canvas, int32_t x, int32_t width, Colour wall, Colour door)
{
    canvas.rectangle(x, 0, width, FAR_PAVEMENT_TOP, wall);
    for (int32_t y = 4; y < FAR_PAVEMENT_TOP; y += 5)
        for (int32_t column = 0; column < width; ++column)
            canvas.set(x + column, y, wall.lighter(-9));
    canvas.rectangle(x, 0, 2, FAR_PAVEMENT_TOP, wall.lighter(-35));
    for (int32_t left = x + 12; left + 28 < x + width; left += 38)
        paintWindow(canvas, left, 10, 20, 28);
    for (int32_t left = x + 50; left + 28 < x + width; left += 38)
        paintWindow(canvas, left, 60, 20, 26);
    canvas.rectangle(x + 12, 58, 22, FAR_PAVEMENT_TOP - 58, door);
    canvas.rectangle(x + 15, 61, 16, 14, Colour::rgb(60, 75, 85));
    canvas.ellipse(x + 29, 82, 3, 3, Colour::gray(200));
    canvas.rectangle(x, FAR_PAVEMENT_TOP - 6, width, 6, Colour::gray(72));
}

void paintPavement(Canvas& canvas, int32_t top, int32_t bottom)
{
    Colour const slab = Colour::rgb(112, 108, 102);
    canvas.rectangle(0, top, canvas.width(), bottom - top, slab);
    for (int32_t y = top; y < bottom; y += 12)
        canvas.rectangle(0, y, canvas.width(), 1, slab.lighter(-14));
    for (int32_t x = 0; x < canvas.width(); x += 24)
        for (int32_t y = top; y < bottom; y += 12)
            canvas.rectangle(x + (y - top) % 24, y, 1, 12, slab.lighter(-12));
}

void paintRoad(Canvas& canvas, bool twoWay)
{
    canvas.rectangle(0, ROAD_TOP, STREET_WIDTH, ROAD_BOTTOM - ROAD_TOP, Colour::rgb(62, 63, 67));
    for (int32_t lane = 0; lane + 1 < STREET_LANES; ++lane) {
        int32_t const y = streetLaneBottom(lane) + 7;
        if (twoWay && lane == 1) {
            canvas.rectangle(0, y - 2, STREET_WIDTH, 2, Colour::rgb(180, 150, 60));
            canvas.rectangle(0, y + 2, STREET_WIDTH, 2, Colour::rgb(180, 150, 60));
        } else {
            for (int32_t x = 10; x < STREET_WIDTH; x += 64)
                canvas.rectangle(x, y, 30, 3, Colour::gray(170));
        }
    }
    canvas.ellipse(420, 288, 44, 12, Colour::gray(50)); // a patch of fresh tar and a manhole cover
    canvas.ellipse(150, 232, 22, 8, Colour::gray(84));
    canvas.ellipse(153, 233, 16, 6, Colour::gray(44));
    for (int32_t y : {ROAD_TOP - 4, ROAD_BOTTOM}) {
        canvas.rectangle(0, y, STREET_WIDTH, 4, Colour::gray(138));
        canvas.rectangle(0, y + 3, STREET_WIDTH, 1, Colour::gray(48));
    }
}

} // namespace

void paintStreet(Picture& picture, bool twoWay)
{
    Canvas canvas(STREET_WIDTH, STREET_HEIGHT);
    paintHouse(canvas, 0, 168, Colour::rgb(128, 78, 62), Colour::rgb(35, 70, 48));
    paintHouse(canvas, 168, 206, Colour::rgb(150, 138, 112), Colour::rgb(92, 40, 36));
    paintHouse(canvas, 374, 130, Colour::rgb(104, 110, 122), Colour::rgb(38, 48, 86));
    paintHouse(canvas, 504, 136, Colour::rgb(136, 96, 70), Colour::rgb(70, 52, 34));
    paintPavement(canvas, FAR_PAVEMENT_TOP, ROAD_TOP - 4);
    paintRoad(canvas, twoWay);
    paintPavement(canvas, ROAD_BOTTOM + 4, GRASS_TOP);
    canvas.rectangle(0, GRASS_TOP, STREET_WIDTH, STREET_HEIGHT - GRASS_TOP, Colour::rgb(66, 98, 48));
    canvas.texture(0, GRASS_TOP, STREET_WIDTH, STREET_HEIGHT - GRASS_TOP, 3, 34, 7);
    canvas.texture(0, 0, STREET_WIDTH, STREET_HEIGHT, 2, 8, 1);
    canvas.texture(0, 0, STREET_WIDTH, STREET_HEIGHT, 24, 7, 2);
    canvas.texture(0, ROAD_TOP, STREET_WIDTH, ROAD_BOTTOM - ROAD_TOP, 90, 8, 3);
    canvas.toPicture(picture);
}

void paintGate(Picture& picture)
{
    Canvas canvas(160, 120);
    canvas.rectangle(0, 0, 160, 30, Colour::rgb(120, 150, 180)); // sky
    canvas.rectangle(0, 22, 160, 38, Colour::rgb(52, 78, 42));   // hedge
    canvas.texture(0, 16, 160, 44, 5, 26, 4);
    canvas.rectangle(0, 56, 160, 64, Colour::rgb(104, 96, 86)); // gravel
    canvas.rectangle(0, 98, 160, 2, Colour::gray(76));
    for (int32_t x : {22, 128}) { // gate posts
        canvas.rectangle(x, 12, 10, 48, Colour::rgb(126, 82, 66));
        canvas.rectangle(x - 2, 8, 14, 5, Colour::gray(150));
    }
    for (int32_t x = 33; x < 128; x += 8)
        canvas.rectangle(x, 20, 2, 38, Colour::gray(28));
    canvas.rectangle(32, 24, 96, 2, Colour::gray(28));
    canvas.rectangle(32, 52, 96, 2, Colour::gray(28));
    canvas.texture(0, 0, 160, 120, 2, 7, 5);
    canvas.texture(0, 56, 160, 64, 11, 8, 6);
    canvas.toPicture(picture);
}

void paintPlaza(Picture& picture)
{
    Canvas canvas(320, 240);
    paintPavement(canvas, 0, 240);
    canvas.ellipse(100, 80, 120, 80, Colour::rgb(92, 84, 78)); // a round of darker stones
    canvas.ellipse(108, 86, 104, 68, Colour::rgb(112, 108, 102));
    canvas.texture(0, 0, 320, 240, 2, 8, 10);
    canvas.texture(0, 0, 320, 240, 26, 8, 11);
    canvas.toPicture(picture);
}

void paintCarPark(Picture& picture)
{
    Canvas canvas(320, 240);
    canvas.rectangle(0, 0, 320, 240, Colour::rgb(138, 134, 128));
    canvas.rectangle(0, 0, 320, 70, Colour::rgb(165, 150, 128)); // back wall
    for (int32_t x = 20; x < 320; x += 60) {
        paintWindow(canvas, x, 14, 28, 34);
        canvas.trapezium(70, 90, x + 18, 3, x, 4, Colour::gray(205)); // bay markings
    }
    canvas.rectangle(0, 66, 320, 4, Colour::gray(90));
    canvas.rectangle(0, 196, 320, 3, Colour::gray(200));
    canvas.texture(0, 0, 320, 240, 2, 8, 8);
    canvas.texture(0, 0, 320, 240, 30, 10, 9);
    canvas.toPicture(picture);
}

} // namespace camera
