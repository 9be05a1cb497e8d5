#include "BaseClasses/Frame.h"
#include "BaseClasses/ProcessFrame.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "Meridane/Subsystem/OutputProxy.h"
#include "misc/rktl_url.h"
#include "streams/rksl_Result.h"
#include "support/Analysis.h"
#include "support/Dump.h"
#include "support/Pnm.h"
#include "support/RgbImage.h"
#include "support/SettingsFile.h"
#include "support/TempFolder.h"
#include "support/bytes.h"
#include "support/child_process.h"

#include <gtest/gtest.h>
#include <png.h>

#include <sstream>

namespace {

using tools::Json;

struct Outcome {
    int status;
    std::string text;
    std::vector<Json> lines; // those that are JSON
};

Outcome replay(std::string const& file, std::vector<std::string> arguments = {})
{
    arguments.insert(arguments.begin(), {"replay", file});
    ChildProcess program(CONTRAFLOW_BINARY_DIR "/tools/contraflow-client", arguments, {});
    Outcome outcome = {program.waitForExit(std::chrono::seconds(60)), program.text(), {}};
    std::istringstream text(outcome.text);
    for (std::string line; std::getline(text, line);)
        if (line.starts_with("{"))
            outcome.lines.push_back(Json::parse(line));
    return outcome;
}

/// The server with one client whose end of the wire is in memory, where it can be saved.
class RecordedClient : private OutputProxy {
public:
    RecordedClient()
        : OutputProxy(0, nullptr)
        , mWire(new rksl::MemIOStream)
    {
        rktl::SmartPtr<rksl::IOStream> stream(mWire);
        EXPECT_TRUE(addStream(stream));
        FrameRequest request;
        request.tracks = 1;
        for (std::string const& name : tools::imageNames())
            request.imageTypes.insert(name);
        rksl::Result result;
        handleCommand(ConnectionCmd::frameRequest(rktl::url("meridane://m.s/c"), request), mWire, result);
        EXPECT_EQ(0, result.getCode());
    }

    void take(Frame& frame) { updateFrameListeners(frame); }
    bool save(std::string const& path) const { return mWire->save(path.c_str()); }

private:
    rksl::MemIOStream* const mWire; // the server's
};

tools::RgbImage readPng(std::string const& path)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&header, path.c_str()))
        return {};
    header.format = PNG_FORMAT_RGB;
    tools::RgbImage image(header.width, header.height);
    png_image_finish_read(&header, nullptr, image.bytes.data(), 0, nullptr);
    return image;
}

/// What a dump holds of an image, as a person sees it; in colour where there is colour.
tools::RgbImage readDump(std::string const& folder, uint64_t frame, std::string const& name)
{
    std::filesystem::path path = tools::dump::imageFile(folder, frame, name, ".ppm");
    if (!std::filesystem::exists(path))
        path = tools::dump::imageFile(folder, frame, name, ".pgm");
    rk_image image = {};
    tools::readPnm(path, image);
    tools::RgbImage const result = tools::toRgb(image);
    rk_free_image(&image);
    return result;
}

void put(rksl::MemIOStream& recording, std::string const& path)
{
    ASSERT_TRUE(recording.save(path.c_str()));
}

Frame frameWith(char const* image, unsigned char gray)
{
    rk_image pixels = {};
    rk_init_image(&pixels, 2, 1, 1);
    pixels.data[0] = gray;
    pixels.data[1] = 9;
    ProcessFrame frame;
    frame.setTimePosition(rktl::TimeStamp(1700000000, 40, true), rktl::ElapsedTime(40));
    frame.setImage(image, pixels, 2);
    frame.setImageNames({image});
    rk_free_image(&pixels);
    Frame sent;
    support::fromBin(sent, support::toBin(frame));
    return sent;
}

} // namespace

// The pipeline runs once; each of its frames goes into a dump and, through the server, into the recording of a client.
class Replay : public testing::TestWithParam<std::pair<char const*, double>> { };

TEST_P(Replay, ShowsWhatTheDumpShowsPixelByPixel)
{
    TempFolder folder;
    std::string const dump = folder / "dump", pictures = folder / "pictures", file = folder / "recording";
    tools::RunPlan const plan(tools::readSettingsFile(CONTRAFLOW_SOURCE_DIR "/package/html/default_settings_xml.txt"));
    auto const input = tools::openVideo(GetParam().first);
    tools::RunOptions options;
    options.startTime = 1700000000000;
    options.limit = GetParam().second;
    options.images = tools::imageNames();
    tools::DumpWriter writer(dump, plan.toJson(), tools::imageNames());
    RecordedClient client;
    uint64_t const first = uint64_t(GetParam().second * 25) - 5; // of the 5 that are compared
    tools::analyse(
        *input, plan, options,
        [&](tools::FrameResult const& result) {
            if (result.number < first)
                return;
            writer.write(result);
            client.take(const_cast<ProcessFrame&>(result.frame)); // as the pipeline hands it to its server: to be marked
        },
        [](uint64_t frame, std::string const& why) { FAIL() << frame << ": " << why; });
    ASSERT_TRUE(client.save(file));

    EXPECT_EQ(0, replay(file, {"--out", pictures}).status);
    size_t images = 0;
    for (uint64_t i = 0; i < 5; ++i)
        for (std::string const& name : tools::imageNames()) {
            SCOPED_TRACE(name + " of frame " + std::to_string(first + i));
            tools::RgbImage const wanted = readDump(dump, first + i, name);
            tools::RgbImage const got = readPng(std::filesystem::path(pictures) / tools::dump::imageFileName(i, name, ".png"));
            ASSERT_EQ(wanted.width, got.width);
            ASSERT_EQ(wanted.height, got.height);
            EXPECT_EQ(wanted.bytes, got.bytes);
            ++images;
        }
    EXPECT_EQ(35u, images);

    // And the objects are those of the dump.
    std::ifstream frames(tools::dump::framesFile(dump));
    Outcome const lines = replay(file);
    ASSERT_EQ(5u, lines.lines.size());
    bool anyObject = false;
    for (Json const& line : lines.lines) {
        std::string text;
        std::getline(frames, text);
        Json const dumped = Json::parse(text);
        EXPECT_EQ(dumped["position_ms"], line["position_ms"]);
        EXPECT_EQ(dumped["time_ms"], line["time_ms"]);
        EXPECT_EQ(dumped["attributes"], line["attributes"]);
        EXPECT_EQ(dumped["objects"], line["objects"]);
        anyObject |= !line["objects"].empty();
    }
    EXPECT_TRUE(anyObject);

    // Drawn on, a picture differs, and is large enough to read.
    EXPECT_EQ(0, replay(file, {"--out", pictures, "--overlay", "--name", "Native_Image", "--count", "1"}).status);
    tools::RgbImage const drawn = readPng(pictures + "/000000-Native_Image.png");
    EXPECT_EQ(640u, drawn.width);
    tools::RgbImage const plain = readPng(pictures + "/000001-Native_Image.png");
    EXPECT_LT(plain.width, drawn.width) << "and only one was drawn anew";
}

INSTANTIATE_TEST_SUITE_P(Scenes, Replay, testing::Values(std::pair("scene:gate", 10.0), std::pair("scene:plaza", 9.0)),
    [](auto const& scene) { return std::string(scene.param.first).substr(6); }); // in colour; in gray

TEST(Recording, OfAServerThatLiesIsRefusedWithAReason)
{
    TempFolder folder;
    std::string const file = folder / "file", pictures = folder / "sub/pictures";
    rksl::MemIOStream stream;
    stream << frameWith("Native Image", 7) << rktl::String("of a kind that nobody knows");
    stream << frameWith("../escape", 8) << rksl::Result(0, "fine") << frameWith("/tmp/escape", 8);
    put(stream, file);
    Outcome outcome = replay(file, {"--out", pictures});
    EXPECT_EQ(0, outcome.status) << outcome.text;
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(pictures), {})) << "only names that are no paths";
    EXPECT_EQ((std::vector<uint8_t>{7, 7, 7, 9, 9, 9}), readPng(pictures + "/000000-Native_Image.png").bytes);

    support::Bytes whole = support::readFile(file);
    struct {
        char const* why;
        support::Bytes bytes;
        size_t lines;
    } const cases[] = {
        {"breaks off in the middle of an object", {whole.begin(), whole.end() - 1}, 2},
        {"breaks off in the middle of an object", {whole.begin(), whole.begin() + 5}, 0},
        {"too long", support::hex("03000000 FFFFFFFF 00"), 0},
        {"received a Frame that cannot be read", support::hex("03000000 02000000 0000"), 0},
        {"the server refuses: Unsupported, no",
            support::hex("0C000000 1F000000 FCFFFFFF 00000000000000000000000000000000 02000000 6E6F00 00000000"), 0},
    };
    for (auto const& c : cases) {
        support::writeFile(file, c.bytes);
        outcome = replay(file);
        EXPECT_EQ(1, outcome.status) << c.why;
        EXPECT_NE(std::string::npos, outcome.text.find(c.why)) << outcome.text;
        EXPECT_EQ(c.lines, outcome.lines.size()) << "what came before is shown";
    }
}
