#include "BaseClasses/CameraMap.h"
#include "BaseClasses/Heartbeat.h"
#include "BaseClasses/ProcessFrame.h"
#include "Meridane/Subsystem/CameraCmd.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "Meridane/Subsystem/TrackerCmd.h"
#include "misc/rktl_url.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_Ping.h"
#include "streams/rksl_Result.h"
#include "streams/rksl_StreamData.h"
#include "support/bytes.h"
#include "support/time_zone.h"

#include <gtest/gtest.h>

#include <map>

using rksl::Command;
using rksl::Result;
using support::Bytes;

namespace {

/// The page's blocks of bytes by name: what stands between "```bytes NAME" and "```", each line up to its "|".
std::map<std::string, Bytes> readPage()
{
    std::ifstream page(CONTRAFLOW_SOURCE_DIR "/docs/protocol.md");
    std::map<std::string, Bytes> blocks;
    std::string name;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("```")) {
            name = line.starts_with("```bytes ") ? line.substr(9) : "";
        } else if (!name.empty()) {
            Bytes const more = support::hex(line.substr(0, line.find('|')));
            blocks[name].insert(blocks[name].end(), more.begin(), more.end());
        }
    }
    return blocks;
}

Bytes frameOf(rksl::Serializable const& object)
{
    rksl::StreamData frame;
    EXPECT_TRUE(frame.fromObj(object));
    return {frame.getBytes(), frame.getBytes() + frame.getLength()};
}

/// 2026-05-31, at so many seconds and milliseconds behind 13:45, UTC.
rktl::TimeStamp at(int second, uint16_t milliseconds)
{
    return {1780235100 + second, milliseconds, false};
}

/// Under a fixed id that ends with number.
Command numbered(unsigned char number, Command const& made)
{
    rktl::UUID id;
    support::Bytes bytes = support::hex("00112233445566778899AABBCCDDEE");
    bytes.push_back(number);
    support::fromBin(id, bytes);
    Command command(id, made.getURL(), unsigned(made.getCommandType()), made.getCommandSubType());
    command.setObjectStream(made.getObjectStream());
    return command;
}

Result answer(Command const& command, rksl::Serializable const* object)
{
    Result result(command, 0, "");
    if (object)
        result.setObject(*object);
    return result;
}

Bytes exampleFrame()
{
    rk_image pixels = {};
    rk_init_image(&pixels, 4, 2, 1);
    for (unsigned int i = 0; i < 8; ++i)
        pixels.data[i] = static_cast<unsigned char>(36 * i);
    ProcessFrame frame;
    frame.setTimePosition(at(31, 0), rktl::ElapsedTime(1200));
    frame.setAttribute("native-resolution", "4x2");
    frame.setAttribute("scene-change", "false");
    frame.setImage("Native Image", pixels, rkil::MultiImage::flatGray);
    rk_free_image(&pixels);
    Object& object = frame.getObjects()[7];
    object.setId(7);
    object.setState(Object::tracked);
    object.insert({10, 20, 30, 40}, {}, at(31, 0));
    frame.setHasObjects(true);
    frame.setImageNames({"Native Image"});
    return frameOf(frame);
}

} // namespace

// The page was worked out by hand from the forms that it describes; whoever writes a client by it gets along with this code.
TEST(ProtocolPage, ShowsTheBytesThatTheCodeWrites)
{
    TimeZone const utc("UTC");
    rktl::url const camera("meridane://camera.localsite/Embedded");
    std::map<std::string, Bytes> session;
    session["heartbeat"] = frameOf(Heartbeat(at(30, 250)));

    Command const connect = numbered(1, ConnectionCmd::connect(camera));
    session["connect"] = frameOf(connect);
    session["connect-result"] = frameOf(answer(connect, nullptr));

    Command const cameras = numbered(2, CameraCmd::query(camera));
    CameraMap map;
    map.addMachine("camera", 18);
    map.addCamera("camera", "Embedded", 18);
    session["query-cameras"] = frameOf(cameras);
    session["query-cameras-result"] = frameOf(answer(cameras, &map));

    Command const images = numbered(3, TrackerCmd::queryImages(camera));
    rksl::Set<rktl::String> const names = {"Activity Image", "Background Image", "Exclusion Mask", "Foreground Image",
        "Native Image", "Peripheral Image", "Processed Image"};
    session["query-images"] = frameOf(images);
    session["query-images-result"] = frameOf(answer(images, &names));

    FrameRequest wanted;
    wanted.tracks = 1;
    wanted.fps = 10;
    wanted.imageTypes = {"Native Image"};
    Command const request = numbered(4, ConnectionCmd::frameRequest(camera, wanted));
    session["request-frames"] = frameOf(request);
    session["request-frames-result"] = frameOf(answer(request, nullptr));
    session["frame"] = exampleFrame();

    rksl::Ping ping;
    ping.timestamp = at(40, 5);
    session["ping"] = frameOf(ping);
    session["ping-answer"] = frameOf(Heartbeat(at(40, 80)));
    Heartbeat periodic(at(45, 300));
    periodic.setAttribute("video-loss", "false");
    periodic.setAttribute("video-position", rktl::ElapsedTime(int64_t(0)).toHumanString(false));
    periodic.setAttribute("video-finished", "false");
    session["periodic-heartbeat"] = frameOf(periodic);

    Command const refused = numbered(5, Command(camera, 2005, 3));
    session["refused"] = frameOf(refused);
    session["refused-result"] = frameOf(Result(refused, -4, "Unsupported command."));
    session["end"] = frameOf(rksl::EndOfFile());

    std::map<std::string, Bytes> const page = readPage();
    ASSERT_EQ(session.size(), page.size());
    for (auto const& [name, bytes] : session) {
        ASSERT_TRUE(page.count(name)) << name;
        EXPECT_EQ(bytes, page.at(name)) << name;
    }
}
