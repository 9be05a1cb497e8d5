#include "trackers/SvmClassification/SvmClassifier.h"

#include "classified_scene.h"

#include <gtest/gtest.h>

namespace {

using Box = rkml::BoundingBox<int>;

DataUnit unitOf(int count, int64_t age)
{
    DataUnit data;
    data.mAge = rktl::ElapsedTime(age);
    for (int i = 0; i < count; ++i) {
        rkil::FlatImage<4> patch;
        patch.resize(20, 60, static_cast<unsigned char>(i + 1));
        data.mPatches.push_back(patch);
        ObjectFeatures features;
        features.objectId = static_cast<uint32_t>(i);
        data.mFeatures.push_back(features);
    }
    return data;
}

/// Object ids in the records of the sample, which number them.
std::string recordsOf(TrainingData const& sample)
{
    std::string text;
    for (ObjectFeatures const& features : sample.readFeatures())
        text += (text.empty() ? "" : " ") + std::to_string(features.objectId);
    return text;
}

/// Values of the tiles of a montage whose tiles are 20 pixels wide.
std::vector<int> tilesOf(rkil::FlatImage<4> const& montage)
{
    std::vector<int> values;
    for (uint32_t x = 0; x < montage.getWidth(); x += 22)
        values.push_back(montage.getImage()->data[4 * x]);
    return values;
}

} // namespace

TEST(Collection, OnlyALongTrackBecomesASample)
{
    struct {
        char const* why;
        int records;
        int64_t age;
        size_t left; // records of the sample; 0 for none
        uint32_t first;
    } const cases[] = {
        {"ten are too few", 10, 2000, 0, 0},
        {"eleven: 0.55 rounds down to none trimmed", 11, 2000, 11, 0},
        {"one second is not above one second", 11, 1000, 0, 0},
        {"just above", 11, 1001, 11, 0},
        {"100 lose 5 at each end", 100, 2000, 90, 5},
        {"39 lose one at each end", 39, 2000, 37, 1},
    };
    for (auto const& c : cases) {
        SvmClassifier classifier;
        DataUnit data = unitOf(c.records, c.age);
        EXPECT_TRUE(classifier.insertData(data, false)) << c.why;
        auto const samples = classifier.extractTrainingData();
        ASSERT_EQ(c.left ? 1u : 0u, samples.size()) << c.why;
        if (!c.left)
            continue;
        auto const records = samples.front().readFeatures();
        EXPECT_EQ(c.left, records.size()) << c.why;
        EXPECT_EQ(c.first, records.front().objectId) << c.why;
        EXPECT_EQ("", samples.front().mClassName);
        EXPECT_EQ("", samples.front().mTag);
        EXPECT_TRUE(classifier.extractTrainingData().empty()) << "handed over";
    }
}

TEST(Collection, RecordsFarFromTheMedianOfFeature2AreDropped)
{
    // Median 10, so 5 to 15 stay: |15 - 10| is not above 5.
    std::vector<int> const values = {10, 10, 10, 10, 10, 10, 10, 15, 16, 5, 4, 400, -400};
    DataUnit data = unitOf(static_cast<int>(values.size()), 2000);
    auto value = values.begin();
    for (ObjectFeatures& features : data.mFeatures)
        features.feature2 = *value++;
    SvmClassifier classifier;
    EXPECT_TRUE(classifier.insertData(data, false));
    EXPECT_EQ("0 1 2 3 4 5 6 7 9", recordsOf(classifier.extractTrainingData().front()));
    EXPECT_EQ(data.mFeatures.size(), data.mPatches.size());

    DataUnit odd = unitOf(12, 2000); // median -8: no distance is below it
    for (ObjectFeatures& features : odd.mFeatures)
        features.feature2 = -8;
    EXPECT_FALSE(classifier.insertData(odd, false)) << "nothing left";
    EXPECT_TRUE(classifier.extractTrainingData().empty());
}

TEST(Collection, AMontageShowsTenMomentsOfTheTrack)
{
    struct {
        int patches;
        std::vector<int> tiles; // number of the patch, from 1
    } const cases[] = {
        {5, {1, 2, 3, 4, 5, 0, 0, 0, 0, 0}},
        {10, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
        {20, {1, 3, 5, 7, 9, 11, 13, 15, 17, 19}},
        // Steps of 2.5, rounded half up: 0, 3, 5, 8, 10, 13, ...
        {25, {1, 4, 6, 9, 11, 14, 16, 19, 21, 24}},
    };
    for (auto const& c : cases) {
        rkil::FlatImage<4> montage;
        ASSERT_TRUE(SvmClassifier::createMontage(montage, unitOf(c.patches, 0).mPatches));
        EXPECT_EQ(220u, montage.getWidth()); // ten of 20, and 20
        EXPECT_EQ(60u, montage.getHeight());
        EXPECT_EQ(c.tiles, tilesOf(montage)) << c.patches;
    }
    rkil::FlatImage<4> montage;
    EXPECT_FALSE(SvmClassifier::createMontage(montage, unitOf(1, 0).mPatches));
}

TEST(Collection, AnObjectLeavesOneSampleWhenItGoesOrMerges)
{
    SvmClassifier classifier;
    uint32_t montageWidth = 0;
    classifier.setSampleObserver(
        [&](TrainingData const&, rkil::FlatImage<4> const& montage) { montageWidth = montage.getWidth(); });
    ClassifiedScene scene;
    auto const show = [&](int frame, rksl::List<rktl::Integer> const& merges) {
        scene.at(frame * 100);
        scene.put(1, {40, 30, 20, 20}); // 1 goes, 2 merges
        scene.frame.getObjects()[2].setId(2);
        scene.frame.getObjects()[2].setState(Object::tracked);
        scene.frame.getObjects()[2].insert({30, 20, 5, 20}, merges, scene.frame.getTimeStamp());
        classifier.process(scene.frame, true);
    };
    for (int i = 0; i < 20; ++i)
        show(i, {});
    EXPECT_TRUE(classifier.extractTrainingData().empty()) << "both are under way";
    for (int i = 20; i < 24; ++i)
        show(i, {rktl::Integer(9)});
    auto samples = classifier.extractTrainingData();
    ASSERT_EQ(1u, samples.size()) << "once, however long it stays merged";
    EXPECT_EQ(18u, samples.front().readFeatures().size()); // 20 less one at each end
    EXPECT_EQ(2u, samples.front().readFeatures().front().objectId);
    // 5 x 20: dw = 3 / 2 + 1 = 2 and dh = -12 / 2 + 1 = -5 make it 9 x 10, which is 54 wide at a height of 60.
    EXPECT_EQ(10u * 54u + 20u, montageWidth);
    scene.frame.getObjects().erase(1);
    classifier.process(scene.frame, true);
    ASSERT_EQ(1u, (samples = classifier.extractTrainingData()).size());
    EXPECT_EQ(22u, samples.front().readFeatures().size()); // 24 less one at each end
    classifier.process(scene.frame, false);
    EXPECT_TRUE(classifier.extractTrainingData().empty());
}

TEST(Collection, AStandingObjectIsSampledOnceItStoodFor15Seconds)
{
    SvmClassifier classifier;
    ClassifiedScene scene;
    scene.setImages(false, true);
    for (int second = 0; second <= 17; ++second) {
        scene.at(second * 1000);
        scene.put(1, {40, 30, 20, 20}).setType("Static");
        classifier.process(scene.frame, true);
        // Records from second 2 to second 16 make 15, none of them trimmed: 0.75 rounds down.
        auto const samples = classifier.extractTrainingData();
        ASSERT_EQ(second == 16 ? 1u : 0u, samples.size()) << second;
        if (!samples.empty()) {
            EXPECT_EQ(15u, samples.front().readFeatures().size());
        }
    }
}

TEST(Collection, TheEmptyPlacesOfTwelveFramesAreNoise)
{
    SvmClassifier classifier;
    classifier.startBkgCollection();
    ClassifiedScene scene;        // cells of 16 by 20
    scene.put(1, {20, 25, 4, 4}); // in the second cell of the second row
    for (int i = 0; i < 13; ++i) {
        EXPECT_TRUE(classifier.extractTrainingData().empty()) << i;
        classifier.process(scene.at(i * 40), true);
    }
    auto const samples = classifier.extractTrainingData();
    EXPECT_EQ(23u, samples.size());
    for (TrainingData const& sample : samples) {
        EXPECT_EQ("rk-noise", sample.mTag);
        EXPECT_EQ("", sample.mClassName);
        EXPECT_EQ(12u, sample.readFeatures().size());
    }
    for (int i = 13; i < 40; ++i)
        classifier.process(scene.at(i * 40), true);
    EXPECT_TRUE(classifier.extractTrainingData().empty()) << "once";
}

TEST(TrainingData, IsReadAndWrittenToTheBit)
{
    rksl::List<ObjectFeatures> features(3);
    TrainingData const sample(features, 5, "Human", rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1'700'000'000'123)));
    support::Bytes const bytes = support::toBin(sample);
    TrainingData again;
    support::fromBin(again, bytes);
    EXPECT_EQ(bytes, support::toBin(again));
    EXPECT_EQ(3u, again.readFeatures().size());
    support::expectEveryPrefixThrows<TrainingData>(bytes);
    EXPECT_NE("", support::thrownBy([&] { sample.toXML("a"); }));
    EXPECT_NE("", support::thrownBy([] { TrainingData().readFeatures(); })) << "holds no list";
}
