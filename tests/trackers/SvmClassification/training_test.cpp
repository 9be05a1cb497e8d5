#include "trackers/SvmClassification/SvmClassifier.h"

#include "support/TempFolder.h"
#include "support/bytes.h"
#include "trackers/SvmClassification/ParallelScores.h"
#include "trackers/SvmClassification/SvmParameters.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

namespace {

/// A sample of records whose features 10 and 11 lie within spread of the centre.
TrainingData sampleOf(std::string const& name, int count, int centre, int spread = 20)
{
    std::mt19937 random(static_cast<unsigned int>(count * 1000 + centre));
    rksl::List<ObjectFeatures> records;
    for (int i = 0; i < count; ++i) {
        ObjectFeatures features;
        for (size_t slot : {size_t(0), size_t(1)})
            features.orientHist[slot] = centre + static_cast<int>(random() % static_cast<unsigned int>(2 * spread + 1)) - spread;
        records.push_back(features);
    }
    return TrainingData(records, 0, name, rktl::TimeStamp());
}

rksl::List<TrainingData> samples(std::initializer_list<TrainingData> list)
{
    rksl::List<TrainingData> data;
    data.insert(data.end(), list.begin(), list.end());
    return data;
}

std::vector<int32_t> const twoFeatures = {10, 11};

struct Told : Training::Listener {
    void onTrainingProgress(char const* text, float progress, unsigned int step, unsigned int steps) override
    {
        lines.push_back(rktl::String::fromFormat("%s %.3f %u/%u", text, double(progress), step, steps));
    }
    std::vector<std::string> lines;
};

} // namespace

TEST(Training, NeedsThirtyRecordsOfTwoNames)
{
    struct {
        char const* why;
        rksl::List<TrainingData> data;
        bool accepted;
        size_t classes;
    } const cases[] = {
        {"29", samples({sampleOf("A", 15, 0), sampleOf("B", 14, 100)}), false, 0},
        {"30", samples({sampleOf("A", 15, 0), sampleOf("B", 15, 100)}), true, 2},
        {"one name", samples({sampleOf("A", 20, 0), sampleOf("A", 20, 100)}), false, 0},
        {"noise is a name, but no class", samples({sampleOf("A", 20, 0), sampleOf("rk-noise", 20, 100)}), true, 1},
        {"noise alone", samples({sampleOf("rk-noise", 40, 0)}), false, 0},
        {"records without a name do not count", samples({sampleOf("A", 29, 0), sampleOf("B", 0, 0), sampleOf("", 20, 0)}), false,
            0},
        {"an empty name makes a class", samples({sampleOf("A", 15, 0), sampleOf("B", 15, 9), sampleOf("", 5, 0)}), true, 3},
        {"nothing", {}, false, 0},
    };
    for (auto const& c : cases) {
        SvmClassifier classifier;
        EXPECT_EQ(c.accepted, classifier.setSVMStruct(c.data, twoFeatures)) << c.why;
        EXPECT_EQ(c.classes, classifier.getClassNames().size()) << c.why;
    }
    TrainingData const broken(rktl::String("text"), 0, "A", rktl::TimeStamp()); // in place of records
    SvmClassifier classifier;
    EXPECT_NE("", support::thrownBy([&] { classifier.setSVMStruct(samples({broken}), twoFeatures); }));
}

TEST(Training, ClassesThatAreApartEndTheGridAtItsFirstPoint)
{
    SvmClassifier classifier;
    ASSERT_TRUE(classifier.setSVMStruct(
        samples({sampleOf("A", 20, 0), sampleOf("B", 20, 100), sampleOf("rk-noise", 20, 300)}), twoFeatures));
    unsigned int points = 0;
    classifier.setGridObserver([&](SvmClassifier::GridProgress const& progress) {
        ++points;
        EXPECT_EQ(100.0f, progress.accuracy);
        EXPECT_EQ(24u, progress.points);
    });
    Told told;
    rktl::String report;
    ASSERT_TRUE(classifier.trainSVM(&told, report)) << report;
    EXPECT_EQ(2u, points) << "one for each class";
    std::vector<std::string> const expected = {"Training A model... 0.000 2/2", "Training A model... 0.250 2/2",
        "Training B model... 0.500 2/2", "Training B model... 0.750 2/2"};
    EXPECT_EQ(expected, told.lines);
    std::string const head = "B model creation: Positive Samples 20, Negative Samples 40\n"
                             "Enabled Features: 2, Max Accuracy: 100 best C:0.125 best G:8 Cost Positives: 2\n  Class 1 : sv ";
    EXPECT_EQ(head, report.substr(0, head.size()));
    EXPECT_NE(std::string::npos, report.find("\n  Class -1 : sv "));

    ObjectFeatures likeA, likeB;
    likeB.orientHist[0] = likeB.orientHist[1] = 100;
    rksl::StringMap<rktl::Double> scores;
    ASSERT_TRUE(classifier.getClassScore(likeA, scores));
    EXPECT_GT(scores["A"], 0.8);
    EXPECT_LT(scores["B"], 0.2);
    ASSERT_TRUE(classifier.getClassScore(likeB, scores));
    EXPECT_GT(scores["B"], 0.8);
}

TEST(Training, SaysWhyItFailed)
{
    SvmClassifier classifier;
    rktl::String report;
    ASSERT_TRUE(classifier.setSVMStruct(samples({sampleOf("A", 15, 0), sampleOf("B", 15, 9), sampleOf("", 5, 0)}), twoFeatures));
    EXPECT_FALSE(classifier.trainSVM(nullptr, report));
    EXPECT_EQ("Need at least one training sample of each type for class . Positive Samples : 0, Negative Samples : 30", report);

    // All records are alike: whether all are called A (F1 = 2 * 0.03 / 1.03, 5.8 percent) or none is, it is below 10 percent.
    SvmClassifier blind;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(blind.setSVMStruct(samples({sampleOf("A", 3, 50, 0), sampleOf("B", 97, 50, 0)}), twoFeatures));
    EXPECT_EQ("Enabled Feature 0 with id 10 has max of 50.000000 and min of 50.000000"
              "Enabled Feature 1 with id 11 has max of 50.000000 and min of 50.000000",
        testing::internal::GetCapturedStdout());
    EXPECT_FALSE(blind.trainSVM(nullptr, report));
    EXPECT_TRUE(report.hasPrefix("A model creation: Positive Samples 3, Negative Samples 97")) << report;
    EXPECT_TRUE(SvmClassifier().trainSVM(nullptr, report)) << "no classes, nothing to do";
}

TEST(Training, GivesTheSameOnAllCoresAsInOrder)
{
    // Classes that overlap, so that points differ and ties must go to the first.
    auto const data = samples({sampleOf("A", 40, 0, 60), sampleOf("B", 40, 50, 60), sampleOf("rk-noise", 20, 20, 90)});
    std::vector<support::Bytes> models;
    for (int run = 0; run < 2; ++run) {
        std::srand(static_cast<unsigned int>(run) + 77); // whatever drew from the library's generator before
        SvmClassifier classifier;
        ASSERT_TRUE(classifier.setSVMStruct(data, twoFeatures));
        rktl::String report;
        ASSERT_TRUE(classifier.trainSVM(nullptr, report)) << report;
        models.push_back(support::toBin(classifier.getModel("A")));
    }
    EXPECT_EQ(models[0], models[1]);

    SvmClassifier classifier;
    ASSERT_TRUE(classifier.setSVMStruct(data, twoFeatures));
    std::vector<float> best; // of class A, point by point
    classifier.setGridObserver([&](SvmClassifier::GridProgress const& progress) {
        if (progress.className == "A")
            best.push_back(progress.accuracy);
    });
    rktl::String report;
    ASSERT_TRUE(classifier.trainSVM(nullptr, report));
    SubClassifier alone("A", 1); // the same training set, made by hand
    svm_range range[2] = {{10, INT32_MAX, INT32_MIN}, {11, INT32_MAX, INT32_MIN}};
    for (TrainingData const& sample : data)
        for (ObjectFeatures const& features : sample.readFeatures())
            for (svm_range& r : range) {
                r.min = std::min(r.min, features.getFeatureVal(r.id));
                r.max = std::max(r.max, features.getFeatureVal(r.id));
            }
    alone.initialize(100, {range[0], range[1]});
    uint32_t index = 0;
    for (TrainingData const& sample : data) {
        alone.setClassValue(sample.mClassName == "A" ? 1 : -1);
        for (ObjectFeatures const& features : sample.readFeatures()) {
            svm_node nodes[3] = {{10, 0}, {11, 0}, {-1, 0}};
            for (int i = 0; i < 2; ++i)
                nodes[i].value = 2.0f * static_cast<float>(features.getFeatureVal(range[i].id) - range[i].min) /
                        static_cast<float>(range[i].max - range[i].min) -
                    1.0f;
            alone.insertTrainingElement(nodes, index++);
        }
    }
    float highest = 0;
    std::vector<float> inOrder;
    for (double const cost : {0.125, 0.5, 2.0, 8.0, 32.0, 128.0})
        for (double const gamma : {8.0, 2.0, 0.5, 0.125}) {
            SvmParameters const parameters(rktl::String::fromFormat("-c %f -b 1 -g %f -v 5 -w %f", cost, gamma, 1.5));
            inOrder.push_back(highest = std::max(highest, alone.do_cross_validation(parameters, 5)));
        }
    EXPECT_EQ(inOrder, best);
}

TEST(ParallelScores, AreHeardInOrderAndEndWhenTheListenerHadEnough)
{
    std::vector<std::pair<size_t, float>> heard;
    int const here = getpid();
    scoreInOrder(
        9,
        [here](size_t trial) {
            if (trial == 2 && getpid() != here)
                _exit(3); // a process that gives no score: the trial is repeated here
            return static_cast<float>(trial) * 1.5f;
        },
        [&](size_t trial, float score) {
            heard.emplace_back(trial, score);
            return trial < 5;
        });
    std::vector<std::pair<size_t, float>> const expected = {{0, 0.0f}, {1, 1.5f}, {2, 3.0f}, {3, 4.5f}, {4, 6.0f}, {5, 7.5f}};
    EXPECT_EQ(expected, heard);
}

TEST(SvmParameters, AreReadAsTheLettersOfTheTool)
{
    SvmParameters const defaults;
    svm_parameter const& usual = defaults;
    EXPECT_EQ(C_SVC, usual.svm_type);
    EXPECT_EQ(RBF, usual.kernel_type);
    EXPECT_EQ(0, usual.gamma);
    EXPECT_EQ(0, usual.nr_weight);
    SvmParameters const changed("-c 0.125000 -b 1 -g 8.000000 -v 5 -w 2.500000 -t 0 -h 0 -m 40 -e 0.01");
    svm_parameter const& p = changed;
    EXPECT_EQ(0.125, p.C);
    EXPECT_EQ(1, p.probability);
    EXPECT_EQ(8.0, p.gamma);
    EXPECT_EQ(LINEAR, p.kernel_type);
    EXPECT_EQ(0, p.shrinking);
    EXPECT_EQ(40, p.cache_size);
    EXPECT_EQ(0.01, p.eps);
    ASSERT_EQ(2, p.nr_weight);
    EXPECT_EQ(1, p.weight_label[0]);
    EXPECT_EQ(2.5, p.weight[0]);
    EXPECT_EQ(-1, p.weight_label[1]);
    EXPECT_EQ(1.0, p.weight[1]);
}

// A machine that the library's own tool trained decides here as the library's own tool decides.
TEST(SubClassifier, DecidesAsTheLibrarysOwnTool)
{
    TempFolder const folder;
    std::mt19937 random(4);
    // Features 10, 11 and 15 from 0 to 128, so that the scaled values -1 + 2 v / 128 are exact in the text of the tool too.
    auto const draw = [&] {
        ObjectFeatures features;
        for (size_t slot : {size_t(0), size_t(1), size_t(5)})
            features.orientHist[slot] = static_cast<int32_t>(random() % 129);
        return features;
    };
    auto const line = [](ObjectFeatures const& features, int label) {
        rktl::String text = rktl::String::fromInteger(label);
        for (int const id : {10, 11, 15})
            text += rktl::String::fromFormat(" %d:%.9f", id, features.getFeatureVal(id) / 64.0 - 1);
        return text;
    };
    std::ofstream train(folder / "train"), test(folder / "test");
    std::vector<ObjectFeatures> asked;
    for (int i = 0; i < 200; ++i) {
        ObjectFeatures const features = draw();
        bool const inside = std::hypot(features.orientHist[0] - 64, features.orientHist[1] - 64) < 45;
        train << line(features, inside ? 1 : -1) << "\n";
        asked.push_back(draw());
        test << line(asked.back(), 1) << "\n";
    }
    train.close();
    test.close();
    auto const run = [](std::string const& command) { ASSERT_EQ(0, std::system((command + " >/dev/null").c_str())) << command; };
    run("svm-train -q -b 1 -c 8 -g 1 -w1 1.5 " + folder / "train" + " " + folder / "model");
    run("svm-predict -q -b 1 " + folder / "test" + " " + folder / "model" + " " + folder / "out");

    svm_model* loaded = svm_load_model((folder / "model").c_str());
    ASSERT_NE(nullptr, loaded);
    svm_parameter const read = loaded->param; // the file tells what predicting takes, and nothing else is set
    loaded->param = {};
    loaded->param.svm_type = read.svm_type;
    loaded->param.kernel_type = read.kernel_type;
    loaded->param.gamma = read.gamma;
    loaded->param.probability = 1;
    SvmModel const model(*loaded, {{10, 0, 128}, {11, 0, 128}, {15, 0, 128}}, "Inside");
    svm_free_and_destroy_model(&loaded);
    SvmModel stored;
    support::fromBin(stored, support::toBin(model));
    EXPECT_EQ(support::toBin(model), support::toBin(stored));
    SubClassifier classifier("Inside", 1);
    classifier.setModel(stored);

    std::ifstream out(folder / "out");
    std::string word;
    int first = 0, second = 0;
    ASSERT_TRUE(out >> word >> first >> second); // "labels 1 -1"
    ASSERT_EQ(0, first + second);
    int positives = 0;
    for (ObjectFeatures const& features : asked) {
        double label = 0, ofFirst = 0, ofSecond = 0;
        ASSERT_TRUE(out >> label >> ofFirst >> ofSecond);
        classifier.setResults(features);
        EXPECT_EQ(label, classifier.getPredicted());
        // The tool prints six digits.
        EXPECT_NEAR(first > 0 ? ofFirst : ofSecond, classifier.getPositiveConfidence(), 1e-5);
        EXPECT_NEAR(first > 0 ? ofSecond : ofFirst, classifier.getNegativeConfidence(), 1e-5);
        positives += label > 0;
    }
    EXPECT_GT(positives, 20);
    EXPECT_LT(positives, 180);
}
