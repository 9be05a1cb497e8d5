#include "trackers/SvmClassification/SvmClassifier.h"

#include "classified_scene.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using Box = rkml::BoundingBox<int>;

Box const inside = {40, 30, 20, 20};

ObjectInfo infoOf(std::map<std::string, double> const& sums, double total)
{
    ObjectInfo info;
    for (auto const& [name, sum] : sums)
        info.mClassHistogram[name] = sum;
    info.mTotalWeight = total;
    info.mVotes = 4;
    info.mSeen = true;
    return info;
}

/// "human none", in order.
std::string classesOf(Object const& object)
{
    return rktl::String::join(object.getClasses(), " ");
}

} // namespace

TEST(SvmClassifier, TheClassIsTheOneWithAClearLead)
{
    struct {
        char const* why;
        std::map<std::string, double> sums;
        double total;
        char const* name;
    } const cases[] = {
        {"no votes", {}, 9, "none"},
        {"below two in all", {{"A", 1.99}}, 1.99, "none"},
        {"one alone wins", {{"A", 2.0}}, 2.0, "A"},
        {"a lead of 0.05", {{"A", 5.0}, {"B", 4.95}}, 9.95, "none"},
        {"a lead of 0.5", {{"A", 4.5}, {"B", 5.0}}, 9.5, "B"},
        {"equals", {{"A", 5}, {"B", 5}}, 10, "none"},
        {"the second comes last", {{"A", 1}, {"B", 5}, {"C", 4.95}}, 10.95, "none"},
        {"the second was the best before", {{"A", 4.95}, {"B", 5}, {"C", 1}}, 10.95, "none"},
        {"nothing votes like a class", {{"Human", 2}, {"unknown", 3}}, 5, "unknown"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.name, SvmClassifier::computeClassID(infoOf(c.sums, c.total))) << c.why;
}

TEST(SvmClassifier, ConfidenceIsTheRootOfTheMeanVote)
{
    ObjectInfo info = infoOf({{"A", 1}, {"B", 2.25}}, 3.25);
    auto const confidences = SvmClassifier::getNormalizedConfidences(info);
    ASSERT_EQ(2u, confidences.size());
    EXPECT_EQ(0.5, confidences["A"]); // root of 1 / 4
    EXPECT_EQ(0.75, confidences["B"]);
    info.mVotes = 0;
    EXPECT_EQ(0.0, SvmClassifier::getNormalizedConfidences(info).at("A"));
    info.mSeen = false;
    EXPECT_TRUE(SvmClassifier::getNormalizedConfidences(info).empty());
    EXPECT_TRUE(SvmClassifier::getNormalizedConfidences(infoOf({{"A", 1.9}}, 1.9)).empty());
}

TEST(SvmClassifier, VotesBuildUpOverAnObjectsLife)
{
    struct {
        char const* why;
        std::map<std::string, double> decisions; // of the models by class
        char const* classes;                     // of the object after five frames
        char const* voted;                       // histogram
    } const cases[] = {
        {"no model", {}, "none", ""},
        {"one says yes", {{"Human", 2}}, "human none", "Human"},
        {"one says no", {{"Human", -2}}, "none unknown", "unknown"},
        {"two say yes to the same degree", {{"Human", 2}, {"Vehicle", 2}}, "none", "Human Vehicle"},
        {"two say yes, one more surely", {{"Human", 1}, {"Vehicle", 3}}, "none vehicle", "Human Vehicle"},
        {"one yes silences the noes", {{"Human", 2}, {"Vehicle", -3}}, "human none", "Human"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        SvmClassifier classifier;
        for (auto const& [name, decision] : c.decisions)
            ASSERT_TRUE(classifier.setModel(steadfast(name, decision)));
        ClassifiedScene scene;
        for (int i = 0; i < 5; ++i) {
            scene.at(i * 40);
            scene.put(7, inside);
            EXPECT_TRUE(classifier.process(scene.frame, false));
        }
        Object const& object = *scene.frame.getObjects().findObject(7);
        EXPECT_EQ(c.classes, classesOf(object));
        std::string voted;
        rksl::StringMap<rktl::Double> scores;
        classifier.getClassScore(ObjectFeatures(), scores);
        for (auto const& [name, sum] : classifier.getObjectInfo(7)->mClassHistogram) {
            voted += (voted.empty() ? "" : " ") + name;
            double const vote = name == "unknown" ? 1 - scores["Human"] : double(scores[name]);
            EXPECT_NEAR(5 * vote, sum, 1e-5);
            EXPECT_NEAR(std::sqrt(vote), object.getClassConfidence(name), 1e-5);
        }
        EXPECT_EQ(c.voted, voted);
        EXPECT_EQ(c.decisions.empty() ? 0u : 5u, classifier.getObjectInfo(7)->mVotes) << "one vote a frame, however many classes";
    }
}

TEST(SvmClassifier, UnknownIsTheMeanOfAllNoes)
{
    SvmClassifier classifier;
    classifier.setModel(steadfast("A", -1));
    classifier.setModel(steadfast("B", -3));
    ClassifiedScene scene;
    scene.put(1, inside);
    classifier.process(scene.frame, false);
    rksl::StringMap<rktl::Double> scores;
    classifier.getClassScore(ObjectFeatures(), scores);
    EXPECT_NEAR(1 - (scores["A"] + scores["B"]) / 2, classifier.getObjectInfo(1)->mTotalWeight, 1e-6);
}

TEST(SvmClassifier, WhoGetsFeaturesAndWhoIsPassedOver)
{
    struct {
        char const* why;
        char const* type;
        Box box;
        bool moving, standing; // masks on the frame
        char const* classes;   // of an object that had the class "old"; without a mask nothing is written back
        unsigned int votes;
    } const cases[] = {
        {"moving, with its mask", "Moving", inside, true, false, "none old", 1},
        {"moving, without it", "Moving", inside, false, true, "old", 0},
        {"moving, at the edge", "Moving", {0, 30, 20, 20}, true, false, "none old", 0},
        {"standing, with its mask", "Static", inside, false, true, "none old", 1},
        {"standing, at the edge", "Static", {0, 30, 20, 20}, false, true, "none old", 1},
        {"standing, without its mask", "Static", inside, true, false, "old", 0},
        {"of another kind", "Parked", inside, true, true, "old", 0},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        SvmClassifier classifier;
        classifier.setModel(steadfast("Human", 2));
        ClassifiedScene scene;
        scene.setImages(c.moving, c.standing);
        Object& object = scene.put(1, c.box);
        object.setType(c.type);
        object.addClass("old");
        EXPECT_TRUE(classifier.process(scene.frame, false));
        EXPECT_EQ(c.classes, classesOf(object));
        ObjectInfo const* const info = classifier.getObjectInfo(1);
        EXPECT_EQ(c.votes, info ? info->mVotes : 0u);
    }
    ClassifiedScene scene;
    scene.frame.clearImages();
    scene.put(1, inside);
    EXPECT_FALSE(SvmClassifier().process(scene.frame, false)) << "no gray image at all";
    scene.setImages();
    scene.frame.setScale(0.5);
    EXPECT_FALSE(SvmClassifier().process(scene.frame, false)) << "a scaled frame is looked at in its scaled image";
}

TEST(SvmClassifier, ASettledObjectIsLeftAlone)
{
    // Each yes weighs 0.88 and makes a confidence of 0.94: settled from the frame on that finds 12 votes' weight, which is the
    // 15th (14 * 0.88 = 12.3).
    for (double const least : {-1.0, 0.9, 0.97}) {
        SvmClassifier classifier;
        classifier.setModel(steadfast("Human", 2));
        classifier.setMinConfidence(least);
        ClassifiedScene scene;
        for (int i = 0; i < 30; ++i) {
            scene.at(i * 40);
            scene.put(1, inside);
            classifier.process(scene.frame, false);
        }
        EXPECT_EQ(least == 0.9 ? 14u : 30u, classifier.getObjectInfo(1)->mVotes) << least;
        EXPECT_NEAR(0.9385, scene.frame.getObjects().findObject(1)->getClassConfidence("human"), 0.002);
    }
}

TEST(SvmClassifier, AnObjectThatWentStartsFromNothing)
{
    SvmClassifier classifier;
    classifier.setModel(steadfast("Human", 2));
    ClassifiedScene scene;
    for (int i = 0; i < 4; ++i) {
        scene.at(i * 40);
        scene.put(1, inside).setState(Object::lost);
        scene.put(2, inside);
        classifier.process(scene.frame, false);
    }
    EXPECT_EQ(4u, classifier.getObjectInfo(1)->mVotes) << "lost is above purged";
    scene.put(2, inside).setState(Object::purged);
    classifier.process(scene.frame, false);
    EXPECT_EQ(nullptr, classifier.getObjectInfo(2));
    scene.frame.getObjects().clear();
    classifier.process(scene.frame, false);
    EXPECT_EQ(nullptr, classifier.getObjectInfo(1));
}

TEST(SvmClassifier, TakesOnlyModelsThatCanVote)
{
    SvmClassifier classifier;
    EXPECT_TRUE(classifier.setModel(ClassificationModel("SVM", "rk-noise", rktl::String("no model"), true))) << "passed over";
    EXPECT_TRUE(classifier.getClassNames().empty());
    EXPECT_FALSE(classifier.setModel(ClassificationModel("SVM", "Human", rktl::String("no model"), true)));
    EXPECT_FALSE(classifier.setModel(ClassificationModel("SVM")));
    SvmModelBytes silent;
    silent.probability = 0;
    SvmModel model;
    support::fromBin(model, silent.bytes());
    EXPECT_FALSE(classifier.setModel(ClassificationModel("SVM", "Human", model, true)));
    EXPECT_TRUE(classifier.getClassNames().empty());
    rksl::StringMap<rktl::Double> scores;
    EXPECT_FALSE(classifier.getClassScore(ObjectFeatures(), scores));

    ASSERT_TRUE(classifier.setModel(steadfast("Human", 2)));
    EXPECT_EQ(support::toBin(steadfast("Human", 2)), support::toBin(classifier.getModel("Human")));
    EXPECT_FALSE(classifier.getModel("Nobody").isValid());
    EXPECT_EQ("", classifier.getModel("Nobody").getName());
}
