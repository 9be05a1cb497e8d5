#include "application/CameraFrame.h"

#include "BaseClasses/ProcessFrame.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr unsigned int colourType = 1;
constexpr unsigned int grayType = 2;

std::vector<unsigned char> convert(std::vector<unsigned char> const& source, uint32_t width, uint32_t height)
{
    std::vector<unsigned char> pixels(size_t(width) * height * 4);
    rk_image image = {pixels.data(), width, height, 4, uint32_t(pixels.size())};
    EXPECT_TRUE(convertYUV420_NV21toARGB8888(source.data(), image));
    return pixels;
}

TEST(CameraFrame, ConvertsABlockToBlueGreenRedLuma)
{
    // Neutral chroma leaves luma as it is.
    EXPECT_EQ((std::vector<unsigned char>{100, 100, 100, 100, 0, 0, 0, 0, 255, 255, 255, 255, 7, 7, 7, 7}),
        convert({100, 0, 255, 7, 128, 128}, 2, 2));
    // c0 = 1, c1 = -1: blue 2081 >> 10 = 2, green (594 - 404) >> 10 = 0, red -1167 >> 10 = -2 (rounded down).
    EXPECT_EQ((std::vector<unsigned char>{102, 100, 98, 100, 2, 0, 0, 0, 255, 255, 253, 255, 9, 7, 5, 7}),
        convert({100, 0, 255, 7, 129, 127}, 2, 2));
    // c0 = -128, c1 = 127: blue -261, green (-76032 + 51308) >> 10 = -25, red 148209 >> 10 = 144.
    EXPECT_EQ((std::vector<unsigned char>{0, 125, 244, 100, 0, 25, 144, 0, 0, 255, 255, 255, 0, 32, 151, 7}),
        convert({100, 0, 255, 7, 0, 255}, 2, 2));
}

TEST(CameraFrame, WalksBlocksRowByRowAndCutsThemAtOddSizes)
{
    // Three by three: pairs for the blocks (0,0), (1,0), (0,1), (1,1); only blue differs: +2 for each step of c0.
    std::vector<unsigned char> source(9, 100);
    for (unsigned char c0 : {0, 1, 2, 3}) {
        source.push_back(static_cast<unsigned char>(128 + c0));
        source.push_back(128);
    }
    std::vector<unsigned char> const pixels = convert(source, 3, 3);
    std::vector<int> blue;
    for (size_t i = 0; i < pixels.size(); i += 4)
        blue.push_back(pixels[i]);
    EXPECT_EQ((std::vector<int>{100, 100, 102, 100, 100, 102, 104, 104, 106}), blue);
}

TEST(CameraFrame, IsInColourWhenSmallAndByDay)
{
    struct {
        int32_t width;
        bool isDay;
        bool colour;
    } const cases[] = {{192, true, true}, {193, true, false}, {192, false, false}, {10, true, true}};
    CameraFrame camera;
    ProcessFrame frame;
    for (auto const& [width, isDay, colour] : cases) {
        SCOPED_TRACE(width);
        std::vector<unsigned char> bytes(size_t(width) * 4, 80);
        bytes.resize(bytes.size() + size_t(width + 1) / 2 * 2 * 2, 128);
        bytes[1] = 33;
        frame.clear();
        EXPECT_EQ(colour, camera.wrap(bytes.data(), width, 4, isDay, frame));
        EXPECT_EQ(colour, frame.isImageSet("Native Image", colourType));
        EXPECT_TRUE(frame.isImageSet("Native Image", grayType)); // colour frames have both
        EXPECT_EQ(rkvl::Resolution(width, 4), frame.getResolution());
        EXPECT_EQ(std::to_string(width) + "x4", frame.getAttribute("native-resolution"));
        std::fill(bytes.begin(), bytes.end(), 0); // the frame has a copy
        auto const& gray = frame.getMultiImage("Native Image").getFlatGray();
        EXPECT_EQ(33, gray.getImage()->data[1]);
        EXPECT_EQ(80, gray.getImage()->data[size_t(width) * 4 - 1]);
    }
}

TEST(CameraFrame, GivesNoImageForWhatIsNoFrame)
{
    CameraFrame camera;
    unsigned char const bytes[16] = {};
    struct {
        unsigned char const* bytes;
        int32_t width, height;
    } const cases[] = {{nullptr, 2, 2}, {bytes, 0, 2}, {bytes, 2, 0}, {bytes, -2, -2}, {bytes, 65536, 65536}};
    for (auto const& [pointer, width, height] : cases)
        for (bool isDay : {true, false}) {
            ProcessFrame frame;
            camera.wrap(pointer, width, height, isDay, frame);
            EXPECT_FALSE(frame.hasImage("Native Image"));
        }
}

} // namespace
