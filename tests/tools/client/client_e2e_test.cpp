#include "support/contraflow.h"
#include "support/loopback.h"
#include "support/svm_model_bytes.h"
#include "trackers/SvmClassification/ClassificationModel.h"
#include "trackers/SvmClassification/SvmModel.h"

#include <algorithm>

namespace {

/// contraflow-client against the real application.
class Client : public Contraflow {
protected:
    ChildProcess serve(std::string const& settings = {})
    {
        writeSettings(settingsWith(settings));
        return start({{"CSDK_LOOP", "1"}}, "projects/contraflow", {"-port", std::to_string(mPort)});
    }

    ChildProcess run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), server());
        return ChildProcess(CONTRAFLOW_BINARY_DIR "/tools/contraflow-client", arguments, {});
    }

    /// Of a class that everything belongs to, with a confidence of the root of 1 / (1 + exp(-2)), 0.9385.
    void writeModel()
    {
        SvmModelBytes form;
        form.max = form.min;
        form.rho = -2;
        SvmModel machine;
        support::fromBin(machine, form.bytes());
        std::filesystem::create_directory(mHome / "models");
        ASSERT_TRUE(ClassificationModel("SVM", "Human", machine, true).toFile((mHome / "models/people.model").c_str()));
    }

    std::string server() const { return "127.0.0.1:" + std::to_string(mPort); }

    void expectRun(std::vector<std::string> const& arguments, int status, std::vector<std::string> const& texts) const
    {
        ChildProcess client = run(arguments);
        EXPECT_EQ(status, client.waitForExit()) << client.text();
        for (std::string const& text : texts)
            EXPECT_NE(std::string::npos, client.text().find(text)) << text << "\n" << client.text();
    }

    uint16_t const mPort = support::freePort();
};

} // namespace

TEST_F(Client, ShowsARunningCamera)
{
    ChildProcess camera = serve();
    ASSERT_TRUE(camera.waitFor("Listening on port"));
    ASSERT_TRUE(support::Connection::toWithin(mPort, 5000).isOpen());

    expectRun({"info"}, 0,
        {"protocol 6.0", "machine   ", "camera    Embedded (enabled|online)", "image     Activity Image",
            "image     Processed Image"});
    expectRun({"ping", "--count", "2"}, 0, {"answer 1 from " + server(), "answer 2 from", "round trip of 2: least "});
    expectRun({"images", "--name", "Nothing", "--out", mHome / "p"}, 1,
        {"the server has no image \"Nothing\"; it offers Activity Image, Background Image"});
    expectRun(
        {"images", "--name", "Native_Image,Background Image", "--count", "3", "--overlay", "--out", mHome / "p"}, 0, {"3 of "});
    EXPECT_TRUE(std::filesystem::exists(mHome / "p/000000-Native_Image.png"));

    expectRun({"record", mHome / "recorded", "--count", "4"}, 0, {"recorded 4 frames"});
    ChildProcess replayed(CONTRAFLOW_BINARY_DIR "/tools/contraflow-client", {"replay", mHome / "recorded"}, {});
    EXPECT_EQ(0, replayed.waitForExit());
    EXPECT_EQ(4, std::count(replayed.text().begin(), replayed.text().end(), '\n'));

    // Stopped by the user, and by the camera: both are orderly ends.
    ChildProcess watch = run({"watch"});
    EXPECT_TRUE(watch.waitFor("frames/s, 0 objects, heartbeat "));
    watch.signal(SIGINT);
    EXPECT_EQ(0, watch.waitForExit()) << watch.text();
    ChildProcess tracks = run({"tracks"}), counted = run({"tracks", "--count", "100000"});
    EXPECT_TRUE(tracks.waitFor("\"frame\":3,\"position_ms\":"));
    EXPECT_TRUE(counted.waitFor("\"frame\":3,\"position_ms\":"));
    camera.signal(SIGTERM);
    EXPECT_EQ(0, tracks.waitForExit()) << tracks.text();
    EXPECT_NE(std::string::npos, tracks.text().find(server() + " has ended the connection"));
    EXPECT_EQ(1, counted.waitForExit()) << "cut short";
    EXPECT_NE(-1, camera.waitForExit());
}

// From the file that the settings name to what a client sees.
TEST_F(Client, ShowsTheClassesThatTheSettingsAskFor)
{
    writeModel();
    ChildProcess camera = serve("<model_files>models/people.model</model_files>");
    ChildProcess tracks = run({"tracks", "--retry"});
    EXPECT_TRUE(tracks.waitFor("\"classes\":{\"human\":0.93")) << tracks.text();
}

// The same, to the camera's event service: an alarm on objects of a class is as sure as the class.
TEST_F(Client, AlarmsAreAsSureAsTheClassTheyAskFor)
{
    writeModel();
    std::ofstream(mHome / "html/spies.xml") << "<ActivitySpy><EventSpy><name>people</name><classes><class>Human</class></classes>"
                                               "</EventSpy><type>NewObject</type></ActivitySpy>";
    writeSettings("<s><video_resolution>320x240</video_resolution><min_width>8</min_width><min_height>8</min_height>"
                  "<sensitivity>50</sensitivity><light_sensitivity>50</light_sensitivity><spies_file>html/spies.xml</spies_file>"
                  "<spies_only>1</spies_only><model_files>models/people.model</model_files></s>");
    ChildProcess camera = start({{"CSDK_SOURCE", "scene:street"}, {"CSDK_LOOP", "1"}}, "tests/contraflow_pugixml");
    EXPECT_TRUE(camera.waitFor("Sending Event 1 (Confidence 94) for Object ID(s) ")) << camera.text();
}

TEST_F(Client, ConnectsAgainWhenItIsTold)
{
    expectRun({"watch"}, 1, {"cannot connect to " + server() + ": Connection refused"});
    ChildProcess client = run({"tracks", "--retry", "--count", "2"});
    EXPECT_TRUE(client.waitFor("Connection refused; trying again"));
    ChildProcess camera = serve();
    EXPECT_EQ(0, client.waitForExit());
    EXPECT_NE(std::string::npos, client.text().find("\"frame\":1,"));
}

TEST_F(Client, SaysWhatIsWrongWithAServer)
{
    struct {
        char const* says; // hex
        char const* why;
    } const cases[] = {
        {"48545450 2F312E31", "does not speak the object protocol"},
        {"", "broke: "},
        {"0B00", "broke: "},
        {"0B000000 02000000 0000", "received a Heartbeat that cannot be read"},
    };
    for (auto const& c : cases) {
        support::OccupiedPort const listener;
        ChildProcess client(
            CONTRAFLOW_BINARY_DIR "/tools/contraflow-client", {"127.0.0.1:" + std::to_string(listener.port()), "watch"}, {});
        support::Connection peer = listener.accept();
        EXPECT_TRUE(peer.send(support::hex(c.says)));
        peer.close();
        EXPECT_EQ(1, client.waitForExit()) << c.why;
        EXPECT_NE(std::string::npos, client.text().find(c.why)) << client.text();
    }
    for (char const* const wrong : {"camera", "camera:", "camera:0", "camera:65536", "camera:80x", ":80", "::1:80"}) {
        ChildProcess client(CONTRAFLOW_BINARY_DIR "/tools/contraflow-client", {wrong, "info"}, {});
        EXPECT_EQ(1, client.waitForExit()) << wrong;
        EXPECT_TRUE(client.text().find("expected HOST:PORT") != std::string::npos) << client.text();
    }
}
