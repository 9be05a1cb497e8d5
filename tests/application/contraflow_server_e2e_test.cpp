#include "BaseClasses/CameraMap.h"
#include "BaseClasses/Frame.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "misc/rktl_Machine.h"
#include "support/contraflow_server.h"
#include "support/object_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using support::Bytes;
using support::Connection;
using support::embedded;
using support::endOfFile;
using support::hex;
using support::ObjectClient;

namespace {

using namespace std::chrono_literals;

Bytes const ping = hex("23 00 00 00 09 00 00 00  7B 0A 0E 16 0D 14 05 00 00");

/// A command frame byte by byte: id, url, type, sub type, objects (with their size) and a time-out of 15 s.
Bytes commandFrame(unsigned char id, std::string const& type, std::string const& subType, std::string const& objects)
{
    Bytes body(16, id);
    for (Bytes const& part : {hex("0E 00 00 00"), Bytes{'m', 'e', 'r', 'i', 'd', 'a', 'n', 'e', ':', '/', '/', 'm', '/', 'c', 0},
             hex(type), hex(subType), hex(objects), hex("98 3A 00 00 00 00 00 00")})
        body.insert(body.end(), part.begin(), part.end());
    Bytes frame = hex("0D 00 00 00 00 00 00 00");
    frame[4] = static_cast<unsigned char>(body.size());
    frame.insert(frame.end(), body.begin(), body.end());
    return frame;
}

/// The answer without message and objects.
Bytes plainResult(unsigned char id)
{
    Bytes frame = hex("0C 00 00 00 1D 00 00 00  00 00 00 00");
    frame.insert(frame.end(), 16, id);
    frame.insert(frame.end(), 9, 0);
    return frame;
}

/// A heartbeat of 25 bytes: the time, version 192, no attributes.
void expectPlainHeartbeat(Bytes const& frame)
{
    ASSERT_EQ(25u, frame.size());
    EXPECT_EQ(hex("0B 00 00 00 11 00 00 00"), Bytes(frame.begin(), frame.begin() + 8));
    EXPECT_EQ(hex("C0 00 00 00 00 00 00 00"), Bytes(frame.begin() + 17, frame.end()));
}

/// The next frame of this type, header included.
Bytes nextOf(unsigned char type, Connection const& connection)
{
    Bytes frame;
    do
        frame = connection.receiveFrame();
    while (frame.size() >= 8 && frame[0] != type && frame[0] != 1);
    return frame;
}

TEST_F(ContraflowServer, HoldsASessionByteByByte)
{
    ChildProcess app = serve();
    ASSERT_TRUE(app.waitFor("Listening on port " + std::to_string(mPort)));
    Connection const client = connect();
    expectPlainHeartbeat(client.receiveFrame());

    ASSERT_TRUE(client.send(commandFrame(0xA1, "BC0B0000", "00000000", "00000000")));
    EXPECT_EQ(plainResult(0xA1), nextOf(12, client));
    ASSERT_TRUE(client.send(commandFrame(0xA2, "BC0B0000", "01000000", "00000000")));
    Bytes const refusal = nextOf(12, client);
    EXPECT_EQ(hex("FC FF FF FF A2"), Bytes(refusal.begin() + 8, refusal.begin() + 13));
    EXPECT_TRUE(app.waitFor("INFO Unsupported ConnectionCmd sub-type"));
    ASSERT_TRUE(client.send(commandFrame(0xA3, "D5070000", "00000000", "00000000"))); // PTZ
    Bytes const unsupported = nextOf(12, client);
    EXPECT_NE(std::string::npos, std::string(unsupported.begin(), unsupported.end()).find("Unsupported command."));

    // tracks 1, fps 10, no images, 0 x 0
    ASSERT_TRUE(client.send(commandFrame(0xA4, "BC0B0000", "02000000",
        "34000000 02000000 2C000000 01000000 0A000000 18000000 F8010000 04000000 F5010000 F8010000 04000000 00000000"
        "00000000 00000000")));
    EXPECT_EQ(plainResult(0xA4), nextOf(12, client));
    EXPECT_TRUE(app.waitFor("Requesting frames ... "));
    Bytes const frame = nextOf(3, client);
    ASSERT_LT(40u, frame.size());
    EXPECT_EQ(hex("03 00 00 00"), Bytes(frame.begin(), frame.begin() + 4));

    ASSERT_TRUE(client.send(ping));
    expectPlainHeartbeat(nextOf(11, client));
    ASSERT_TRUE(client.send(endOfFile));
    EXPECT_EQ(endOfFile, nextOf(1, client)) << "behind whatever was queued";
    EXPECT_TRUE(client.waitForEnd(2000));
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(6s)) << app.text();
}

TEST_F(ContraflowServer, GivesImagesTracksAndNames)
{
    ChildProcess app = serve();
    ObjectClient client(connect());

    rksl::Result result = client.ask(rksl::Command(embedded, 3002, 7));
    CameraMap cameras;
    ASSERT_TRUE(result.peek(cameras));
    rktl::String const machine = rktl::getMachineName();
    EXPECT_EQ(18, cameras.getCameras(machine.c_str(), 0)["Embedded"]);
    EXPECT_EQ(-1, client.ask(rksl::Command(embedded, 3002, 11)).getCode());

    rksl::Set<rktl::String> names;
    ASSERT_TRUE(client.ask(rksl::Command(embedded, 3012, 0)).peek(names));
    EXPECT_EQ(7u, names.size());
    FrameRequest request;
    request.tracks = 1;
    request.imageTypes = names;
    request.imageTypes.insert("No Such Image");
    EXPECT_EQ(0, client.ask(ConnectionCmd::frameRequest(embedded, request)).getCode());

    Frame frame;
    for (int i = 0; i < 5; ++i) // the first may have been made before the request
        ASSERT_TRUE(client.read(frame));
    EXPECT_TRUE(frame.hasObjects());
    EXPECT_FALSE(frame.hasImage("No Such Image"));
    for (rktl::String const& name : names) {
        ASSERT_TRUE(frame.hasImage(name)) << name;
        rkil::MultiImage const& image = frame.getMultiImage(name);
        EXPECT_EQ(160u, image.getWidth()) << name;
        EXPECT_EQ(120u, image.getHeight()) << name;
    }
    rk_image const& mask = *frame.getMultiImage("Exclusion Mask").getFlatGray().getImage();
    EXPECT_TRUE(std::all_of(mask.data, mask.data + mask.size, [](unsigned char pixel) { return pixel == 0; }));

    request.imageTypes.clear();
    request.tracks = 0;
    for (int i = 0; i < 400; ++i)
        request.imageTypes.insert("name number " + std::to_string(i));
    EXPECT_EQ(-1, client.ask(ConnectionCmd::frameRequest(embedded, request)).getCode()) << "more than 4 KiB of names";

    // The end from the server's side; the client answers it.
    app.signal(SIGTERM);
    while (client.read(frame))
        ;
    EXPECT_TRUE(client.stream.isEOF());
    client.stream.close();
    EXPECT_EQ(0, app.waitForExit(6s)) << app.text();
}

TEST_F(ContraflowServer, ReloadsWhileClientsAreConnected)
{
    ChildProcess app = serve();
    for (int pass = 0; pass < 2; ++pass) {
        Connection const client = connect();
        expectPlainHeartbeat(client.receiveFrame());
        app.signal(SIGUSR1);
        EXPECT_EQ(endOfFile, nextOf(1, client));
        client.send(endOfFile);
        EXPECT_TRUE(client.waitForEnd());
        ASSERT_TRUE(app.waitFor("Listening on port ")) << app.text();
    }
    Connection const silent = connect(); // lets the server wait for its end
    expectPlainHeartbeat(silent.receiveFrame());
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(10s)) << app.text();
}

TEST_F(ContraflowServer, TakesAPortOnceItIsFree)
{
    support::OccupiedPort occupied;
    mPort = occupied.port();
    ChildProcess app = serve();
    ASSERT_TRUE(app.waitFor("Now processing in color mode")) << app.text();
    occupied.free();
    Connection const client = Connection::toWithin(mPort, 5000);
    expectPlainHeartbeat(client.receiveFrame());
    client.send(endOfFile);
    EXPECT_TRUE(client.waitForEnd());
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(6s)) << app.text();
}

} // namespace
