#include "trackers/SvmClassification/SvmModel.h"

#include "support/svm_model_bytes.h"
#include "trackers/SvmClassification/ObjectFeatures.h"
#include "trackers/SvmClassification/SubClassifier.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace {

SvmModel read(SvmModelBytes const& form)
{
    SvmModel model;
    support::Bytes const bytes = form.bytes();
    EXPECT_EQ(bytes.size(), support::fromBin(model, bytes));
    return model;
}

SubClassifier classifierOf(SvmModelBytes const& form)
{
    SubClassifier classifier("Human", 1);
    classifier.setModel(read(form));
    return classifier;
}

ObjectFeatures withFeature10(int32_t value)
{
    ObjectFeatures features;
    features.orientHist[0] = value;
    return features;
}

} // namespace

TEST(SvmModel, IsReadAndWrittenToTheBit)
{
    SvmModelBytes weighted, silent, linked;
    weighted.weights = 7; // whatever the number, two are stored
    silent.probability = 0;
    linked.kernel = 2;
    for (SvmModelBytes const& form : {SvmModelBytes(), weighted, silent, linked}) {
        support::Bytes const bytes = form.bytes();
        EXPECT_EQ(bytes, support::toBin(read(form)));
        SvmModel const original = read(form);
        SvmModel copy("other");
        copy = original;
        EXPECT_EQ(bytes, support::toBin(copy)) << "a copy owns what it holds";
        support::expectEveryPrefixThrows<SvmModel>(bytes);
    }
    SvmModel empty("Nobody"), again;
    support::fromBin(again, support::toBin(empty));
    EXPECT_EQ("Nobody", again.getName());
    EXPECT_FALSE(again.isInitialised());
}

TEST(SvmModel, RefusesWhatLibsvmCouldNotBeAsked)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    struct {
        char const* why;
        std::function<void(SvmModelBytes&)> change;
    } const cases[] = {
        {"feature 0", [](auto& m) { m.id = 0; }},
        {"feature 62 would end the process", [](auto& m) { m.id = 62; }},
        {"a node of feature 62", [](auto& m) { m.nodeIndex = 62; }},
        {"a support vector without its end", [](auto& m) { m.lastIndex = 10; }},
        {"more features than bytes", [](auto& m) { m.features = 0xffffffff; }},
        {"more vectors than bytes", [](auto& m) { m.vectors = 0x7fffffff; }},
        {"negative vectors", [](auto& m) { m.vectors = -1; }},
        {"more classes than bytes", [](auto& m) { m.classes = 0x7fffffff; }},
        {"negative classes", [](auto& m) { m.classes = -2; }},
        {"no support vectors",
            [](auto& m) {
                m.vectors = 0, m.nodeValues = m.coefficients = {}, m.counts = {0, 0};
            }},
        {"counts that do not add up",
            [](auto& m) {
                m.counts = {2, 1};
            }},
        {"a negative count",
            [](auto& m) {
                m.counts = {-1, 3};
            }},
        {"a regression", [](auto& m) { m.type = 3; }},
        {"a kernel that takes no vectors", [](auto& m) { m.kernel = 4; }},
        {"no positive class",
            [](auto& m) {
                m.labels = {0, -1};
            }},
        {"two positive classes",
            [](auto& m) {
                m.labels = {1, 2};
            }},
        {"gamma is no number", [nan](auto& m) { m.gamma = nan; }},
        {"a node is no number", [nan](auto& m) { m.nodeValues[1] = nan; }},
        {"an infinite coefficient", [](auto& m) { m.coefficients[0] = HUGE_VAL; }},
        {"rho is no number", [nan](auto& m) { m.rho = nan; }},
        {"probA is no number", [nan](auto& m) { m.probA = nan; }},
    };
    for (auto const& c : cases) {
        SvmModelBytes form;
        c.change(form);
        SvmModel model = read(SvmModelBytes());
        EXPECT_NE("", support::thrownBy([&] { support::fromBin(model, form.bytes()); })) << c.why;
        EXPECT_EQ(SvmModelBytes().bytes(), support::toBin(model)) << c.why << ": the model is as before";
    }
}

// Every byte of a model, turned into each of a few others: the model is refused, or can be asked like any other.
TEST(SvmModel, FlippedBytesNeverBreakAPrediction)
{
    support::Bytes const valid = SvmModelBytes().bytes();
    for (size_t i = 0; i < valid.size(); ++i)
        for (unsigned char const flip : {0x01, 0x7f, 0x80, 0xff}) {
            support::Bytes bytes = valid;
            bytes[i] ^= flip;
            SvmModel model;
            if (!support::thrownBy([&] { support::fromBin(model, bytes); }).empty())
                continue;
            SubClassifier classifier("Human", 1);
            classifier.setModel(model);
            classifier.setResults(withFeature10(7));
            EXPECT_GE(1.0, classifier.getPositiveConfidence()) << i;
        }
}

TEST(SubClassifier, PredictsFromTheScaledFeature)
{
    struct {
        int32_t value;
        double scaled;
    } const cases[] = {{10, 1}, {0, -1}, {9, 0.8}, {20, 3}, {-10, -3}};
    for (auto const& c : cases) {
        double const positive = 1 / (1 + std::exp(-2 * c.scaled));
        SubClassifier classifier = classifierOf({});
        EXPECT_TRUE(classifier.setResults(withFeature10(c.value)));
        EXPECT_EQ(c.scaled > 0 ? 1 : -1, classifier.getPredicted()) << c.value;
        // libsvm stops its iteration over pairs of classes at 0.0025.
        EXPECT_NEAR(positive, classifier.getPositiveConfidence(), 0.0025) << c.value;
        EXPECT_NEAR(1 - positive, classifier.getNegativeConfidence(), 0.0025) << c.value;
        EXPECT_EQ(static_cast<float>(classifier.getPositiveConfidence()), classifier.getClassScore(withFeature10(c.value)));
    }
}

TEST(SubClassifier, FindsThePositiveClassByItsLabel)
{
    SvmModelBytes swapped;
    swapped.labels = {-1, 1}; // the decision of 2 x now speaks for the negative class
    SubClassifier classifier = classifierOf(swapped);
    classifier.setResults(withFeature10(10));
    EXPECT_EQ(-1, classifier.getPredicted());
    EXPECT_NEAR(0.1192, classifier.getPositiveConfidence(), 0.0025);
    EXPECT_NEAR(0.8808, classifier.getNegativeConfidence(), 0.0025);
    EXPECT_NEAR(0.1192, classifier.getClassScore(withFeature10(10)), 0.0025);
}

TEST(SubClassifier, WithoutAModelOrWithAConstantFeature)
{
    SubClassifier classifier("Human", 1);
    EXPECT_TRUE(classifier.setResults(withFeature10(10)));
    EXPECT_EQ(-1, classifier.getPredicted());
    EXPECT_EQ(0, classifier.getPositiveConfidence());
    EXPECT_EQ(0, classifier.getNegativeConfidence());
    EXPECT_EQ(0, classifier.getClassScore(withFeature10(10)));
    SvmModelBytes constant;
    constant.min = constant.max = 5; // scaled to 0 whatever the value: as likely as not
    EXPECT_NEAR(0.5, classifierOf(constant).getClassScore(withFeature10(500)), 0.0025);
    SvmModelBytes widest;
    widest.min = INT32_MIN, widest.max = INT32_MAX; // a width of 33 bits
    EXPECT_NEAR(0.5, classifierOf(widest).getClassScore(withFeature10(0)), 0.0025);
}
