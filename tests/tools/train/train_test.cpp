#include "support/TempFolder.h"
#include "support/child_process.h"
#include "support/class_samples.h"
#include "support/text_file.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string text;

    bool says(std::string const& words) const { return text.find(words) != std::string::npos; }
};

Outcome runProgram(std::string const& program, std::vector<std::string> const& arguments)
{
    ChildProcess child(program, arguments, {});
    int const status = child.waitForExit(std::chrono::seconds(100));
    return {status, child.text()};
}

std::string const trainer = CONTRAFLOW_BINARY_DIR "/tools/contraflow-train";

Outcome train(std::vector<std::string> const& arguments)
{
    return runProgram(trainer, arguments);
}

rksl::List<TrainingData> samplesOf(std::string const& path)
{
    rksl::List<TrainingData> samples;
    EXPECT_TRUE(samples.fromFile(path.c_str())) << path;
    return samples;
}

} // namespace

// People walk through the scene; the picture of one of them is removed, and another one is called nothing in particular.
TEST(Train, CollectsReviewsTrainsAndTests)
{
    TempFolder const folder;
    std::string const people = folder / "people", review = people + ".review", models = folder / "models";
    auto const collected = train({"collect", "--class", "Human", "--out", people, "--to", "25", "scene:gate"});
    ASSERT_EQ(0, collected.status) << collected.text;
    auto const samples = samplesOf(people);
    ASSERT_GE(samples.size(), 2u) << collected.text;
    EXPECT_EQ("Human", samples.front().mClassName);
    EXPECT_EQ(1, samples.front().mNumber);
    ASSERT_TRUE(fs::exists(review + "/00001.png"));
    ASSERT_TRUE(fs::exists(review + "/00002.png"));

    ASSERT_EQ(0, train({"collect", "--class", "Human", "--out", people, "--to", "25", "scene:gate"}).status);
    EXPECT_EQ(2 * samples.size(), samplesOf(people).size()) << "what was there stays";

    fs::remove(review + "/00001.png");
    std::string list = contents(review + "/list.txt");
    size_t const second = list.find("00002\tHuman");
    ASSERT_NE(std::string::npos, second);
    put(review + "/list.txt", list.replace(second, 11, "00002\trk-noise"));
    auto const reviewed = train({"review", review});
    ASSERT_EQ(0, reviewed.status) << reviewed.text;
    EXPECT_TRUE(reviewed.says("struck 1: 1\ngiven another class 1: 2\n")) << reviewed.text;
    auto const kept = samplesOf(people);
    ASSERT_EQ(2 * samples.size() - 1, kept.size());
    EXPECT_EQ(2, kept.front().mNumber);
    EXPECT_EQ("rk-noise", kept.front().mClassName);
    EXPECT_EQ(std::string::npos, contents(review + "/list.txt").find("00001\t"));

    std::string const shapes = folder / "shapes";
    ASSERT_TRUE(classSamples().toFile(shapes.c_str()));
    auto const trained = train({"train", "--out", models, shapes});
    ASSERT_EQ(0, trained.status) << trained.text;
    EXPECT_TRUE(trained.says("Large: F1 100.0 %")) << trained.text;
    EXPECT_TRUE(fs::exists(models + "/Large.model"));
    EXPECT_TRUE(fs::exists(models + "/Not%20large.model"));

    auto const tested = train({"test", "--models", models, "--to", "12", "Large=scene:gate"});
    ASSERT_EQ(0, tested.status) << tested.text;
    EXPECT_TRUE(tested.says(" votes: ")) << tested.text;
    EXPECT_TRUE(tested.says("\ntruth ")) << tested.text;

    auto const analysed = runProgram(CONTRAFLOW_BINARY_DIR "/tools/contraflow-analyze",
        {"scene:gate", "--models", models, "--limit", "12", "--dump", folder / "dump", "--images", "Native_Image"});
    ASSERT_EQ(0, analysed.status) << analysed.text;
    EXPECT_NE(std::string::npos, contents(folder / "dump/frames.jsonl").find("\"classes\":{")) << "objects with a class";
    EXPECT_NE(std::string::npos, contents(folder / "dump/run.json").find("Large.model")) << "the dump repeats with its models";
}

TEST(Train, RefusesWhatItCannotUseAndSaysWhy)
{
    TempFolder const folder;
    put(folder / "text", "no samples");
    ASSERT_TRUE(classSamples().toFile((folder / "shapes").c_str()));
    rksl::List<TrainingData> few = classSamples();
    few.erase(std::next(few.begin()), few.end());
    ASSERT_TRUE(few.toFile((folder / "few").c_str()));
    rksl::List<TrainingData> noise = classSamples();
    for (TrainingData& sample : noise)
        sample.mClassName = "rk-noise";
    ASSERT_TRUE(noise.toFile((folder / "noise").c_str()));
    rksl::List<TrainingData> nameless = classSamples();
    nameless.back().mClassName.clear();
    ASSERT_TRUE(nameless.toFile((folder / "nameless").c_str()));
    fs::create_directories(folder / "shapes.review");
    put(folder / "shapes.review/list.txt", "");
    struct {
        std::vector<std::string> arguments;
        int status;
        char const* words;
    } const cases[] = {
        {{"collect", "--class", " ", "--out", folder / "x", "scene:gate"}, 2, "a class has a name"},
        {{"collect", "--class", "A", "--out", folder / "text", "scene:gate"}, 1, "text: is no file of samples"},
        {{"train", "--out", folder / "m", folder / "text"}, 1, "is no file of samples"},
        {{"train", "--out", folder / "m", folder / "few"}, 1, "at least 30 records, and two class names"},
        {{"train", "--out", folder / "m", folder / "noise"}, 1, "there are: rk-noise 60"},
        {{"train", "--out", folder / "m", folder / "nameless"}, 1, "has no class"},
        {{"review", folder / "shapes"}, 1, "is no folder of pictures"},
        {{"review", folder / "shapes.review"}, 1, "holds no picture of any sample; nothing was struck"},
        {{"test", "--models", folder.path(), "scene:gate"}, 1, "holds no model files"},
    };
    for (auto const& c : cases) {
        auto const outcome = train(c.arguments);
        EXPECT_EQ(c.status, outcome.status) << outcome.text;
        EXPECT_TRUE(outcome.says(c.words)) << outcome.text;
    }
    EXPECT_FALSE(fs::exists(folder / "m"));
    EXPECT_EQ(10u, samplesOf(folder / "shapes").size());
}

TEST(Train, AFullDiskLeavesTheOldModelWhole)
{
    TempFolder const folder;
    ASSERT_TRUE(classSamples().toFile((folder / "shapes").c_str()));
    fs::create_directories(folder / "m");
    put(folder / "m/Large.model", "the old one");
    // No file may grow beyond one block of 512 bytes.
    auto const outcome = runProgram("/bin/sh",
        {"-c", "trap '' XFSZ; ulimit -f 1; exec \"$0\" \"$@\"", trainer, "train", "--out", folder / "m", folder / "shapes"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_TRUE(outcome.says("Large.model: cannot be written; what was there before is still there")) << outcome.text;
    EXPECT_EQ("the old one", contents(folder / "m/Large.model"));
    EXPECT_FALSE(fs::exists(folder / "m/Large.model.part"));
}

TEST(Train, KeepsWhatItCollectedWhenItIsInterrupted)
{
    TempFolder const folder;
    ChildProcess child(trainer, {"collect", "--class", "Human", "--out", folder / "people", "scene:street", "scene:gate"}, {});
    for (int i = 0; i < 10000 && !fs::exists(folder / "people"); ++i) // a slow machine under a sanitizer takes half a minute
        child.waitFor("never", ChildProcess::Milliseconds(10));
    ASSERT_TRUE(fs::exists(folder / "people"));
    child.signal(SIGINT);
    EXPECT_EQ(0, child.waitForExit()) << child.text();
    auto const samples = samplesOf(folder / "people");
    EXPECT_GE(samples.size(), 1u);
    EXPECT_TRUE(fs::exists(folder / "people.review/00001.png"));
}
