#include "support/PictureFile.h"
#include "support/SceneTruth.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>

TEST(SceneTruth, TellsWhatWalksThroughTheGate)
{
    auto const truth = tools::sceneTruth("gate", camera::makeScene("gate"), {10, 1});
    EXPECT_EQ(160, truth["width"]);
    EXPECT_EQ(120, truth["height"]);
    EXPECT_EQ(10.0, truth["fps"]);
    ASSERT_EQ(300u, truth["frames"].size()); // 30 s
    ASSERT_EQ(2u, truth["objects"].size());

    // The first, 46 pixels high and so 15 wide, enters at 7 s with 22 pixels a second: its edge is in the picture once it has
    // gone one pixel, and it is gone when it has gone all of 160 + 15.
    auto const& first = truth["objects"][0];
    EXPECT_EQ(1, first["id"]);
    EXPECT_EQ(false, first["wrong_way"]);
    EXPECT_EQ(7100, first["first_ms"]); // 1 / 22 s after 7000
    EXPECT_EQ(71, first["first_frame"]);
    EXPECT_EQ(14900, first["last_ms"]); // 175 / 22 = 7.954 s after 7000
    EXPECT_EQ(180.0, truth["objects"][1]["heading"]);

    auto const& frame = truth["frames"][100]; // after 3 s: 66 pixels from -15
    EXPECT_EQ(10000, frame["time_ms"]);
    ASSERT_EQ(1u, frame["objects"].size());
    EXPECT_EQ(nlohmann::ordered_json({51, 60, 15, 46}), frame["objects"][0]["box"]); // feet at row 106
    EXPECT_TRUE(truth["frames"][0]["objects"].empty());
}

TEST(PictureFile, ColoursOfAPpmAreThoseOfTheCamera)
{
    camera::Picture picture;
    picture.resize(2, 1);
    picture.bytes = {100, 200, 128, 128};
    std::string const path = testing::TempDir() + "picture_file_test_" + std::to_string(getpid()) + ".ppm";
    auto contents = [&] {
        tools::writePicture(path, picture);
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        std::remove(path.c_str());
        return text.str();
    };
    EXPECT_EQ("P6\n2 1\n255\n\x64\x64\x64\xc8\xc8\xc8", contents());
    // Cr at its top: red + 1.402 x 127 = 178, green - 0.714 x 127 = -90; Cb neutral.
    picture.bytes = {100, 0, 128, 255};
    EXPECT_EQ(std::string("P6\n2 1\n255\n\xff\x0a\x64\xb2\0\0", 17), contents());
    EXPECT_THROW(tools::writePicture("/nonexistent/x.png", picture), std::runtime_error);
}
