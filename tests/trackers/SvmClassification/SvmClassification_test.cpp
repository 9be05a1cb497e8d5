#include "trackers/SvmClassification/SvmClassification.h"

#include "classified_scene.h"
#include "image/rkil_MultiImage.h"
#include "misc/rktl_Logger.h"
#include "support/TempFolder.h"
#include "support/class_samples.h"
#include "trackers/SvmClassification/ClassificationParams.h"

#include <gtest/gtest.h>

namespace {

struct Lines : rktl::Logger {
    Lines()
        : Logger("")
    {
        start();
    }
    ~Lines() noexcept override { stop(rktl::ElapsedTime(5000)); }
    rktl::String format(rktl::LogType const&, rktl::String const& text) override
    {
        lines.push_back(text.trim());
        return text;
    }
    bool output(rktl::LogType const&, rktl::String const&) override { return true; }
    std::vector<std::string> lines;
};

struct Told : Training::Listener {
    void onTrainingProgress(char const* text, float progress, unsigned int step, unsigned int steps) override
    {
        lines.push_back(rktl::String::fromFormat("%s|%.2f %u/%u", text, double(progress), step, steps));
    }
    std::vector<std::string> lines;
};

rktl::String namesOf(rksl::Set<rktl::String> const& names)
{
    return rktl::String::join(names, " ");
}

} // namespace

TEST(SvmClassification, AnswersForEachOfItsInterfaces)
{
    SvmClassification stage;
    rkpl::Plugin* found = nullptr;
    ASSERT_TRUE(stage.supports("{ed512152-da9e-43b6-a7fe-352243634713}", &found));
    EXPECT_EQ(static_cast<Classification*>(&stage), found);
    ASSERT_TRUE(stage.supports("{7207013E-24A7-4ac3-A04B-17623102F82D}", &found));
    EXPECT_EQ(static_cast<Collection*>(&stage), found);
    ASSERT_TRUE(stage.supports("{F7382F53-454C-4f39-A255-4DF7DF5B5EE1}", &found));
    EXPECT_EQ(static_cast<Training*>(&stage), found);
    ASSERT_TRUE(stage.supports(rkpl::Schemes::identifier, &found));
    ASSERT_TRUE(stage.supports(VideoProcess::identifier, &found));
    EXPECT_FALSE(stage.supports("{2568ADEE-B4F4-4db1-9282-9823C1CC390C}", &found)) << "it tracks nothing";

    rksl::StringMap<rktl::Integer> schemes, images;
    stage.getSchemes(schemes);
    EXPECT_EQ(1, schemes.at("SVM"));
    stage.getRequiredImageTypes(images);
    EXPECT_EQ(3, images.at("Native-Scaled"));
    EXPECT_EQ(2, images.at("Processed Image"));
    EXPECT_EQ(2, images.at("Stationary Object Processed"));
    EXPECT_EQ("SvmClassification", stage.getDefaultParameters().getName());
    EXPECT_TRUE(stage.getDefaultParameters().isEnabled());
}

TEST(SvmClassification, LoadsModelFilesUntilTheFirstThatIsNone)
{
    TempFolder const folder;
    ASSERT_TRUE(steadfast("Animal", 2).toFile((folder / "1.model").c_str()));
    ASSERT_TRUE(rktl::Integer(4).toFile((folder / "2.model").c_str()));
    ASSERT_TRUE(steadfast("Vehicle", 2).toFile((folder / "3.model").c_str()));
    ASSERT_TRUE(ClassificationModel("SVM").toFile((folder / "empty.model").c_str()));
    Lines logger;
    SvmClassification stage;
    stage.setLogger(&logger);
    auto const set = [&](std::vector<std::string> const& paths, ClassificationModel const& ready = ClassificationModel()) {
        logger.lines.clear();
        ClassificationParams params("SvmClassification", true);
        for (std::string const& path : paths)
            params.setModel(path, ClassificationModel());
        if (ready.isValid())
            params.setModel("ready", ready);
        return stage.setParameters(ProcessParams(params)); // through the general record, as a client sends it
    };
    EXPECT_FALSE(set({folder / "1.model", folder / "2.model", folder / "3.model"}));
    EXPECT_EQ("Animal", namesOf(stage.getClassNames()));
    std::vector<std::string> const expected = {": Loading model:  " + (folder / "1.model"),
        ": Loading model:  " + (folder / "2.model"), ": Unable to load classification model:  " + (folder / "2.model")};
    EXPECT_EQ(expected, logger.lines);

    EXPECT_TRUE(set({folder / "3.model"}));
    EXPECT_EQ("Vehicle", namesOf(stage.getClassNames())) << "all models are replaced";
    EXPECT_FALSE(set({folder / "empty.model"})) << "a record that is not valid";
    EXPECT_FALSE(set({folder / "missing.model"}));
    EXPECT_TRUE(set({}, steadfast("Face", 1)));
    EXPECT_EQ("Face", namesOf(stage.getClassNames()));
    EXPECT_FALSE(set({}, ClassificationModel("SVM", "Bad", rktl::String("text"), true)));
    EXPECT_EQ("SvmClassification: Unable to set classification model:  ready", logger.lines.back());

    ClassificationModel model("x");
    EXPECT_TRUE(stage.getModel("Nobody", model));
    EXPECT_FALSE(model.isValid());
    EXPECT_EQ("", model.getType());
}

TEST(SvmClassification, ModelFilesWithABadByteNeverEndTheProcess)
{
    TempFolder const folder;
    std::string const path = folder / "a.model";
    ASSERT_TRUE(steadfast("Human", 2).toFile(path.c_str()));
    support::Bytes const valid = support::readFile(path);
    rksl::StringMap<rktl::Double> scores;
    rkil::MultiImage image(rkil::MultiImage::flatGray);
    rkil::FlatImage<1> gray;
    gray.resize(8, 8, 3);
    image = *gray.getImage();
    int accepted = 0;
    auto const tryOut = [&](support::Bytes const& bytes) {
        support::writeFile(path, bytes);
        ClassificationModel model;
        SvmClassification stage;
        if (!model.fromFile(path.c_str()) || !model.isValid() || !stage.setModel(model))
            return false;
        stage.testImage(image, scores);
        return true;
    };
    support::expectEveryPrefixRefused(
        valid, [&](unsigned char const* data, unsigned int size) { return tryOut(support::Bytes(data, data + size)); });
    for (size_t i = 0; i < valid.size(); ++i) {
        support::Bytes bytes = valid;
        bytes[i] ^= 0x81;
        accepted += tryOut(bytes);
    }
    EXPECT_GT(accepted, 0) << "some bytes are only numbers";
    EXPECT_LT(accepted, static_cast<int>(valid.size()));
}

TEST(SvmClassification, TestsAPictureOrAPartOfIt)
{
    SvmClassification stage;
    rksl::StringMap<rktl::Double> scores;
    rkil::FlatImage<1> gray;
    gray.resize(8, 8, 3);
    rkil::FlatImage<4> colour;
    colour.resize(8, 8, 3);
    rkil::MultiImage grayImage(rkil::MultiImage::flatGray), colourImage(rkil::MultiImage::flatColour);
    grayImage = *gray.getImage();
    colourImage = *colour.getImage();
    EXPECT_FALSE(stage.testImage(grayImage, scores)) << "no model";
    stage.setModel(steadfast("Human", 2));
    EXPECT_TRUE(stage.testImage(grayImage, scores));
    EXPECT_NEAR(0.88, scores.at("Human"), 0.005);
    EXPECT_FALSE(stage.testImage(colourImage, scores));
    EXPECT_TRUE(scores.empty());
    EXPECT_TRUE(stage.testImage(grayImage, grayImage, scores));
    EXPECT_FALSE(stage.testImage(grayImage, colourImage, scores));
    gray.resize(9, 8);
    rkil::MultiImage other(rkil::MultiImage::flatGray);
    other = *gray.getImage();
    EXPECT_FALSE(stage.testImage(grayImage, other, scores)) << "a mask of another size";
}

TEST(SvmClassification, CollectsBetweenStartAndStop)
{
    SvmClassification stage;
    stage.enable(true);
    ClassifiedScene scene;
    int64_t now = 0;
    auto const live = [&](int frames, uint32_t id) {
        for (int i = 0; i < frames; ++i) {
            scene.at(now += 100);
            scene.put(id, {40, 30, 20, 20});
            EXPECT_TRUE(stage.processFrame(scene.frame));
        }
        scene.frame.getObjects().clear();
        EXPECT_TRUE(stage.processFrame(scene.frame));
    };
    live(30, 1);
    EXPECT_TRUE(stage.queryTrainingData().empty()) << "not started";
    EXPECT_TRUE(stage.startDataCollection(0));
    live(30, 2);
    EXPECT_TRUE(stage.startDataCollection(0)) << "a second start keeps what there is";
    EXPECT_TRUE(stage.isCollectingData());
    for (int i = 0; i < 30; ++i) {
        scene.at(now += 100);
        scene.put(3, {40, 30, 20, 20});
        stage.processFrame(scene.frame);
    }
    stage.collectRemaining(); // the recording ends while object 3 lives
    EXPECT_TRUE(stage.stopDataCollection());
    EXPECT_FALSE(stage.isCollectingData());
    EXPECT_EQ(2u, stage.queryTrainingData().size());
    stage.startDataCollection(0);
    live(30, 4);
    stage.stopDataCollection();
    stage.startDataCollection(Collection::withBackground);
    EXPECT_TRUE(stage.queryTrainingData().empty()) << "a new start drops them";
    live(13, 5); // of which 1.2 s make a sample
    stage.stopDataCollection();
    auto const samples = stage.queryTrainingData();
    size_t noise = 0;
    for (TrainingData const& sample : samples)
        noise += sample.mTag == "rk-noise";
    EXPECT_GT(noise, 15u);
    EXPECT_EQ(1u, samples.size() - noise);
}

TEST(SvmClassification, TrainsModelsAndTellsHowItGoes)
{
    SvmClassification stage;
    Told told;
    ASSERT_TRUE(stage.setTrainingListener(&told));
    rksl::List<ClassificationModel> models;
    ASSERT_TRUE(stage.train(classSamples(), models));
    ASSERT_EQ(2u, models.size());
    EXPECT_EQ("Large", models.front().getName());
    EXPECT_EQ("Not large", models.back().getName());
    EXPECT_TRUE(models.front().isValid());
    std::vector<std::string> const expected = {"Setting global features...|0.00 1/2", "Training Models...|0.00 2/2",
        "Training Large model...|0.00 2/2", "Training Large model...|0.25 2/2", "Training Not large model...|0.50 2/2",
        "Training Not large model...|0.75 2/2", "Models successfuly trained.|1.00 2/2"};
    EXPECT_EQ(expected, told.lines);

    TempFolder const folder;
    ASSERT_TRUE(models.front().toFile((folder / "Large.model").c_str()));
    ClassificationModel again;
    ASSERT_TRUE(again.fromFile((folder / "Large.model").c_str()));
    EXPECT_EQ(support::toBin(models.front()), support::toBin(again));

    told.lines.clear();
    EXPECT_FALSE(stage.train(rksl::List<TrainingData>(), models));
    EXPECT_TRUE(models.empty());
    EXPECT_EQ("Error: |-1.00 0/0", told.lines.back());
    rksl::List<TrainingData> unlabelled = classSamples();
    unlabelled.front().mClassName.clear();
    EXPECT_FALSE(stage.train(unlabelled, models));
    EXPECT_EQ("Error: Need at least one training sample of each type for class . Positive Samples : 0, Negative Samples : "
              "54|-1.00 0/0",
        told.lines.back());
    rksl::List<TrainingData> broken = classSamples();
    broken.back().mFeatures.clear();
    EXPECT_FALSE(stage.train(broken, models));
    EXPECT_TRUE(rktl::String(told.lines.back()).hasPrefix("Error: libraries/")) << told.lines.back();
    EXPECT_FALSE(stage.train(rktl::String("dtd"), models));
}
