#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "support/svm_model_bytes.h"
#include "support/tracked_scene.h"
#include "trackers/EventSpies/Direction.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <cmath>

using Rect = TrackedScene::Rect;
using Params = SimpleTracker::Params;

namespace {

constexpr uint32_t pixels = 64 * 48;

Params withSceneSensitivity(float sensitivity)
{
    Params params = TrackedScene::withMode(SimpleTracker::bothDetectors);
    params.sceneSensitivity = sensitivity;
    return params;
}

rksl::List<rkml::Polygon2D<float>> leftHalf()
{
    rksl::List<rkml::Polygon2D<float>> polygons;
    polygons.push_back(rkml::Polygon2D<float>(rkml::BoundingBox<float>(0.0f, 0.0f, 0.5f, 1.0f)));
    return polygons;
}

} // namespace

// ---- Set-up ----

TEST(SimpleTrackerSetUp, RefusesSensitivitiesOutsideZeroToOne)
{
    SimpleTracker tracker(nullptr, 0, false);
    for (float wrong : {-0.001f, 1.001f, std::nanf("")}) {
        Params params;
        params.sensitivity = wrong;
        EXPECT_FALSE(tracker.setParameters(params));
        EXPECT_EQ("Invalid Sensitivity: SimpleTracker (474)", tracker.getLastError());
        params.sensitivity = 0.5f;
        params.sceneSensitivity = wrong;
        EXPECT_FALSE(tracker.setParameters(params));
        EXPECT_EQ("Invalid Scene Detection Sensitivity: SimpleTracker (480)", tracker.getLastError());
    }
    for (float limit : {0.0f, 1.0f}) {
        Params params;
        params.sensitivity = params.sceneSensitivity = limit;
        EXPECT_TRUE(tracker.setParameters(params));
    }
    Params models;
    models.classModels.insert("person.model");
    EXPECT_FALSE(tracker.setParameters(models)) << "no classifier in this build";
    EXPECT_EQ("Unable to set classification parameters: SimpleTracker (550)", tracker.getLastError());
}

// The lowest strength that counts is (1 - b) * 255 + 0.5 cut, with b of 0.5, 0.9 and 1 for sensitivities of 0, 0.5 and 1:
// 128, 26, and 1 as the least. All gray values beside the scene's give strengths to both sides of each.
TEST(SimpleTrackerSetUp, SensitivitySetsTheLeastStrengthOfForeground)
{
    struct {
        float sensitivity;
        unsigned int threshold;
        char const* line;
    } const cases[] = {
        {0.0f, 128, "Initializing: sensitivity = 0.50, minSize=4x4"},
        {0.5f, 26, "Initializing: sensitivity = 0.90, minSize=4x4"},
        {1.0f, 1, "Initializing: sensitivity = 1.00, minSize=4x4"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.line);
        Params params = TrackedScene::withMode(SimpleTracker::backgroundOnly);
        params.sensitivity = c.sensitivity;
        TrackedScene scene(params);
        EXPECT_TRUE(scene.logged(c.line));
        scene.learn(5000);
        int below = 0, above = 0;
        for (unsigned char value = 0; value < 200; ++value) {
            scene.clear();
            scene.paint({20, 10, 20, 20}, value);
            ASSERT_TRUE(scene.show(5001 + value));
            unsigned int const strength = scene.pixel("Foreground Image", 30, 20);
            bool const isForeground = strength >= c.threshold;
            ++(isForeground ? above : below);
            EXPECT_EQ(isForeground ? "20,10 19x19 moving" : "", scene.regions()) << "strength " << strength;
        }
        EXPECT_TRUE(below && above);
    }
}

// Two squares with four empty columns between them: an 11 x 11 kernel reaches across, a 5 x 5 kernel does not.
// Stripes with a column between them fill up when gaps are closed first, and go when specks are dropped first.
TEST(SimpleTrackerSetUp, SizesAboveElevenChooseTheLargeKernelAndDropSpecksFirst)
{
    struct {
        int32_t width, height;
        bool large;
    } const cases[] = {{11, 11, false}, {12, 5, true}, {5, 12, true}};
    for (auto const& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        Params params = TrackedScene::withMode(SimpleTracker::backgroundOnly);
        params.minWidth = c.width;
        params.minHeight = c.height;
        TrackedScene scene(params);
        scene.learn(5000);
        scene.paint({5, 10, 20, 20}, 0);
        scene.paint({29, 10, 20, 20}, 0);
        ASSERT_TRUE(scene.show(5001));
        EXPECT_EQ(c.large ? "5,10 43x19 moving" : "5,10 19x19 moving; 29,10 19x19 moving", scene.regions());
        scene.clear();
        for (uint32_t x = 10; x < 31; x += 2)
            scene.paint({x, 10, 1, 20}, 0);
        ASSERT_TRUE(scene.show(5002));
        EXPECT_EQ(c.large ? "" : "10,10 20x19 moving", scene.regions());
    }
}

TEST(SimpleTrackerSetUp, UnnamedSpiesGetNumbersOfTheirOwn)
{
    Params params = TrackedScene::withMode(SimpleTracker::bothDetectors);
    for (char const* name : {"", "Named", ""}) {
        Direction const spy(name, "", 0, 20, rktl::ElapsedTime(400), 45);
        params.spies.push_back(EventSpyFactory(&spy));
    }
    TrackedScene scene(params, 160, 48);
    scene.learn(5000);
    std::multiset<std::string> names;
    for (uint32_t i = 0; i < 50; ++i) {
        scene.clear();
        scene.paint({10 + 2 * i, 10, 20, 20}, 0);
        ASSERT_TRUE(scene.show(5040 + 40 * i));
        for (Event const& event : scene.events)
            names.insert(event.getSpyName());
    }
    EXPECT_EQ((std::set<std::string>{"Named", "Spy 0", "Spy 1"}), std::set<std::string>(names.begin(), names.end()));
    EXPECT_TRUE(params.spies.front().getSpy()->getName().empty()) << "the caller's spies are left alone";
}

// ---- Foreground ----

/// A model file of a class that every object is said to belong to, with a confidence of 0.94.
void writeSurely(std::string const& path, char const* name)
{
    SvmModelBytes form;
    form.max = form.min;
    form.rho = -2;
    SvmModel model;
    support::fromBin(model, form.bytes());
    ASSERT_TRUE(ClassificationModel("SVM", name, model, true).toFile(path.c_str()));
}

// A block stands out from the learned scene: an object with a class, which spies and metadata see in the same frame.
TEST(SimpleTracker, ModelsSayWhatObjectsAre)
{
    TempFolder const folder;
    writeSurely(folder / "human.model", "Human");
    SimpleTracker::Params params = TrackedScene::withMode(SimpleTracker::backgroundOnly);
    params.classModels.insert(folder / "human.model");
    TrackedScene scene(params);
    scene.learn(5000);
    for (uint32_t i = 1; i <= 20; ++i) {
        scene.clear();
        scene.paint({20 + i / 4, 14, 14, 18}, 250);
        ASSERT_TRUE(scene.show(5000 + i * 40));
    }
    ObjectMap const& objects = scene.frame.getObjects();
    ASSERT_EQ(1u, objects.size());
    Object const& object = objects.begin()->second;
    EXPECT_EQ(1u, object.getClasses().count("human"));
    EXPECT_NEAR(0.9385, object.getClassConfidence("Human"), 0.002);
    rktl::String metadata;
    Frame::createFrameMetadata(scene.frame.getTimeStamp(), objects, 64, 48, metadata);
    EXPECT_NE(std::string::npos, metadata.find("<Type>Human</Type> <Likelihood>0.93")) << metadata;
}

TEST(SimpleTracker, ComparesOnceFiveSecondsAreOverAndTellsTheShareOfForeground)
{
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::bothDetectors));
    scene.learn(4900);
    scene.paintFirst(768, 0);
    ASSERT_TRUE(scene.show(5000));
    EXPECT_EQ("0.003255", scene.attribute("foreground-pixels")) << "10 of 3072 stand for what is not compared";
    ASSERT_TRUE(scene.show(5001));
    EXPECT_EQ("0.250000", scene.attribute("foreground-pixels"));
}

TEST(SimpleTracker, ModesRunTheDetectorsThatTheyName)
{
    struct {
        int32_t mode;
        char const* share;   // of the first compared frame, with a square of 400 of 3072 pixels
        char const* regions; // that a square gives which has just come; by motion alone it loses one pixel on each side
        char const* standing;
    } const cases[] = {
        {SimpleTracker::noDetector, "0.000000", "", ""},
        {SimpleTracker::peripheralOnly, "0.003255", "20,11 19x17 moving", ""},
        {SimpleTracker::backgroundOnly, "0.130208", "20,10 19x19 moving", "20,10 19x19 moving"},
        {SimpleTracker::bothDetectors, "0.130208", "20,10 19x19 moving", "20,10 19x19"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.mode);
        TrackedScene scene(TrackedScene::withMode(c.mode));
        scene.learn(5000);
        scene.paint({20, 10, 20, 20}, 0);
        ASSERT_TRUE(scene.show(5001));
        EXPECT_EQ(c.share, scene.attribute("foreground-pixels"));
        EXPECT_EQ(c.regions, scene.regions());
        EXPECT_EQ(c.mode >= SimpleTracker::backgroundOnly, scene.morphologyRan());
        for (uint32_t i = 0; i < 5; ++i) // the square differs from two frames before twice; then four masks have to go
            ASSERT_TRUE(scene.show(5002 + i));
        EXPECT_EQ(c.standing, scene.regions());
    }
}

// A standing square moves again in one part. Its box is one less than its pixels each way, and the erosion takes one pixel
// off each side of the part.
TEST(SimpleTracker, ARegionMovesWithTenPixelsAndMoreThanFifteenPercentInMotion)
{
    struct {
        Rect square;
        uint32_t partWidth, partHeight;
        char const* regions;
        char const* why;
    } const cases[] = {
        {{20, 10, 12, 7}, 7, 4, "20,10 11x6 moving", "10 of 66"},
        {{20, 10, 11, 9}, 8, 4, "20,10 10x8", "12 of 80 are 15 % and no more"},
        {{20, 10, 9, 6}, 5, 5, "20,10 8x5", "9 of 40"},
        {{20, 10, 9, 6}, 7, 4, "20,10 8x5 moving", "10 of 40"},
    };
    for (auto const& c : cases) {
        TrackedScene scene(TrackedScene::withMode(SimpleTracker::bothDetectors));
        scene.learn(5000);
        scene.paint(c.square, 0);
        for (uint32_t i = 0; i < 6; ++i)
            ASSERT_TRUE(scene.show(5001 + i));
        scene.paint({c.square.x, c.square.y, c.partWidth, c.partHeight}, 255);
        ASSERT_TRUE(scene.show(5007));
        EXPECT_EQ(c.regions, scene.regions()) << c.why;
    }
}

TEST(SimpleTracker, RegionsOfExactlyTheLeastSizeStay)
{
    struct {
        int32_t width, height;
        char const* regions;
    } const cases[] = {{11, 6, "20,10 11x6 moving"}, {12, 6, ""}, {11, 7, ""}};
    for (auto const& c : cases) {
        Params params = TrackedScene::withMode(SimpleTracker::backgroundOnly);
        params.minWidth = c.width;
        params.minHeight = c.height;
        TrackedScene scene(params);
        scene.learn(5000);
        scene.paint({20, 10, 12, 7}, 0);
        ASSERT_TRUE(scene.show(5001));
        EXPECT_EQ(c.regions, scene.regions()) << c.width << "x" << c.height;
    }
}

TEST(SimpleTracker, WhatThePolygonsCoverIsNotWatched)
{
    Params params = TrackedScene::withMode(SimpleTracker::bothDetectors);
    params.maskPolygons = leftHalf();
    TrackedScene scene(params);
    scene.learn(5000);
    scene.paint({4, 10, 12, 12}, 0);
    scene.paint({44, 10, 12, 12}, 0);
    ASSERT_TRUE(scene.show(5001));
    EXPECT_EQ("0.046875", scene.attribute("foreground-pixels")) << "144 of 3072";
    EXPECT_EQ("44,10 11x11 moving", scene.regions());
    EXPECT_EQ(0, scene.pixel("Exclusion Mask", 10, 15));
    EXPECT_EQ(255, scene.pixel("Exclusion Mask", 50, 15));

    TrackedScene colour(params);
    for (uint32_t i = 0; i < 6; ++i)
        ASSERT_TRUE(colour.showColour(100 * i, {0, 0, 0, 0}));
    ASSERT_TRUE(colour.showColour(700, {0, 200, 0, 0}));
    EXPECT_EQ(0, colour.pixel("Peripheral Image", 10, 15));
    EXPECT_EQ(255, colour.pixel("Peripheral Image", 50, 15));
}

// ---- Scene changes ----

// The limit is 1 - 2s / 4 up to a sensitivity s of 0.5, and 1 - (s / 2 + 0.25) above it; of 3072 pixels.
TEST(SimpleTracker, ASceneChangesAboveTheLimitOnly)
{
    struct {
        float sensitivity;
        size_t stays, changes;
    } const cases[] = {{0.5f, 2304, 2305}, {0.6f, 1382, 1383}, {1.0f, 768, 769}, {0.0f, pixels, pixels + 1}};
    for (auto const& c : cases) {
        SCOPED_TRACE(c.sensitivity);
        TrackedScene scene(withSceneSensitivity(c.sensitivity));
        scene.learn(5000);
        scene.paintFirst(c.stays, 0);
        ASSERT_TRUE(scene.show(5001));
        EXPECT_FALSE(scene.logged("Max foreground pixel count exceeded ..."));
        EXPECT_TRUE(scene.morphologyRan());
        if (c.changes > pixels)
            continue; // no frame can exceed it
        scene.paintFirst(c.changes, 0);
        ASSERT_TRUE(scene.show(5002));
        EXPECT_TRUE(scene.logged("Max foreground pixel count exceeded ..."));
        EXPECT_FALSE(scene.morphologyRan());
    }
}

TEST(SimpleTracker, AChangeLastsFiveSecondsFromTheLastFrameAboveTheLimit)
{
    TrackedScene scene(withSceneSensitivity(0.5f));
    scene.learn(5000);
    scene.paintFirst(pixels, 255);
    ASSERT_TRUE(scene.show(5001));
    EXPECT_EQ("false", scene.attribute("scene-change")) << "it is said from the next frame on";
    EXPECT_EQ(101, scene.pixel("Background Image", 5, 5)) << "learned at once, with weight 1/128: (100 * 127 + 255) >> 7";
    ASSERT_TRUE(scene.show(5101)) << "above the limit again, so the time starts over";
    EXPECT_EQ("true", scene.attribute("scene-change"));
    EXPECT_FALSE(scene.logged("Max foreground pixel count exceeded ...")) << "said once";
    EXPECT_EQ(102, scene.pixel("Background Image", 5, 5)) << "learns from every frame: (101 * 127 + 255) >> 7";

    scene.clear();
    scene.paint({20, 10, 20, 20}, 0);
    ASSERT_TRUE(scene.show(10100));
    EXPECT_EQ("true", scene.attribute("scene-change"));
    EXPECT_EQ("", scene.regions()) << "nothing new is found meanwhile";
    EXPECT_FALSE(scene.morphologyRan());
    EXPECT_TRUE(scene.frame.isImageSet("Activity Image", rkil::MultiImage::flatGray)) << "but the frame goes to the clients";

    ASSERT_TRUE(scene.show(10101));
    EXPECT_TRUE(scene.logged("Lighting change finished ... "));
    EXPECT_EQ("false", scene.attribute("scene-change"));
    EXPECT_EQ("20,10 19x19 moving", scene.regions());
    scene.clear();
    scene.paintFirst(9, 0);
    unsigned int const before = scene.pixel("Background Image", 5, 0);
    ASSERT_TRUE(scene.show(20000));
    EXPECT_EQ(before * 116 >> 7, scene.pixel("Background Image", 5, 0)) << "back to weight 12/128";
}

// ---- Upkeep ----

// Nine black pixels bring the mean of 100 down to (100 * 116) >> 7 = 90 and 81 at each update.
TEST(SimpleTracker, LearnsFromEachFrameForFiveSecondsAndThenAfterMoreThanHalfASecond)
{
    struct {
        uint32_t learned, position;
        unsigned char mean;
    } const cases[] = {
        {4999, 5001, 90}, // the last update lies below 5000: the next frame is learned
        {4999, 5501, 90}, // 500 after that
        {4999, 5502, 81},
        {5000, 5500, 100},
        {5000, 5501, 90},
    };
    for (uint32_t learned : {4999u, 5000u}) {
        TrackedScene scene(TrackedScene::withMode(SimpleTracker::backgroundOnly));
        scene.learn(learned);
        scene.paintFirst(9, 0);
        for (auto const& c : cases) {
            if (c.learned != learned)
                continue;
            ASSERT_TRUE(scene.show(c.position));
            EXPECT_EQ(c.mean, scene.pixel("Background Image", 5, 0)) << learned << ", " << c.position;
        }
    }
}

// The box of 19 x 19 at (2, 10) grows by 5 on each side and is cut at the left edge: columns 0 to 25, rows 5 to 33.
TEST(SimpleTracker, DoesNotLearnWhereObjectsAre)
{
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::backgroundOnly));
    scene.learn(5000);
    scene.paint({2, 10, 20, 20}, 0);
    scene.paint({60, 40, 2, 2}, 0); // a speck is no object
    ASSERT_TRUE(scene.show(5501));
    for (uint32_t y = 0; y < scene.height; ++y)
        for (uint32_t x = 0; x < scene.width; ++x)
            ASSERT_EQ(x <= 25 && y >= 5 && y <= 33 ? 0 : 255, scene.pixel("Activity Image", x, y)) << x << "," << y;
    EXPECT_EQ(100, scene.pixel("Background Image", 10, 20));
    EXPECT_EQ(90, scene.pixel("Background Image", 60, 40));
}

TEST(SimpleTracker, ColourAndGrayEachStartAModelOfTheirOwn)
{
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::bothDetectors));
    ASSERT_TRUE(scene.show(0));
    EXPECT_TRUE(scene.logged("Now processing in grayscale mode")) << "the set-up's model fits no frame";
    EXPECT_TRUE(scene.logged("Initialization done ..."));
    scene.learn(5000);
    EXPECT_FALSE(scene.logged("Now processing in grayscale mode"));
    ASSERT_TRUE(scene.showColour(6000, {10, 20, 30, 40}));
    EXPECT_TRUE(scene.logged("Now processing in color mode"));
    EXPECT_EQ("0.000000", scene.attribute("foreground-pixels")) << "nothing differs from a model that has seen nothing";
    rk_image const& model = *scene.frame.getMultiImage("Background Image").getFlatColour().getImage();
    for (uint32_t i = 0; i < model.size; ++i)
        ASSERT_EQ((std::vector<unsigned char>{10, 20, 30, 255})[i % 4], model.data[i]);
}

// ---- Failures ----

TEST(SimpleTracker, RefusesAFrameWithoutTheImageItWasToldOf)
{
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::bothDetectors));
    scene.beginFrame(0);
    EXPECT_FALSE(scene.tracker.process(scene.frame, false, scene.events));
    EXPECT_EQ("Invalid Input Image: SimpleTracker (120)", scene.tracker.getLastError());
    ASSERT_TRUE(scene.show(40));
    EXPECT_FALSE(scene.tracker.process(scene.frame, true, scene.events)) << "it is gray";
    EXPECT_EQ("Invalid Input Image: SimpleTracker (120)", scene.tracker.getLastError());
    EXPECT_TRUE(scene.show(80));
}

TEST(SimpleTracker, FramesTooNarrowForTheModelFailAfterTheStages)
{
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::bothDetectors), 3, 48);
    EXPECT_FALSE(scene.show(0));
    EXPECT_EQ("Background Update Failed: SimpleTracker (348)", scene.tracker.getLastError());
    EXPECT_EQ("0.069444", scene.attribute("foreground-pixels")) << "10 of 144";
    EXPECT_FALSE(scene.showColour(40, {1, 2, 3, 4}));
    EXPECT_EQ("Background Update Failed: SimpleTracker (344)", scene.tracker.getLastError());
}

// Squares of 3 x 5 pixels, of which motion leaves 3 x 3; four pixels apart each way, so that the kernel joins none of them.
TEST(SimpleTracker, MoreRegionsThanLabelsFailTheFrameAndNotTheNext)
{
    constexpr uint32_t columns = 182, rows = 181; // 32942 of them
    TrackedScene scene(TrackedScene::withMode(SimpleTracker::peripheralOnly), 7 * columns + 4, 9 * rows + 4);
    for (uint32_t i = 0; i < 6; ++i)
        ASSERT_TRUE(scene.show(40 * i));
    for (uint32_t row = 0; row < rows; ++row)
        for (uint32_t column = 0; column < columns; ++column)
            scene.paint({4 + 7 * column, 4 + 9 * row, 3, 5}, 255);
    EXPECT_FALSE(scene.show(240));
    EXPECT_EQ("Connected Components Failed: SimpleTracker (281)", scene.tracker.getLastError());
    scene.clear();
    EXPECT_FALSE(scene.show(280)) << "the masks of four frames are looked at";
    for (uint32_t i = 0; i < 6; ++i)
        scene.show(320 + 40 * i);
    EXPECT_TRUE(scene.show(600));
    EXPECT_EQ("", scene.regions());
}
