#include "Meridane/Subsystem/CameraInterface.h"

#include "BaseClasses/Frame.h"
#include "BaseClasses/Heartbeat.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_Logger.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_Ping.h"
#include "support/object_client.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

using support::ObjectClient;

namespace {

/// Accepts commands of type 7 and lets the test look at its clients.
class TestInterface : public CameraInterface {
public:
    explicit TestInterface(unsigned int readWait = 5)
        : CameraInterface(nullptr, readWait)
    {
    }
    ~TestInterface() noexcept override { stopStreamServers(); }

    bool handleCommand(rksl::Command const& command, rksl::IOStream const*, rksl::Result& result) override
    {
        handled.push_back(std::chrono::steady_clock::now());
        if (command.getCommandType() == 8)
            throw rktl::Exception("a handler that fails");
        result.setMessage("handled");
        return command.getCommandType() == 7;
    }

    bool log(rktl::LogType, rktl::String const& text) override
    {
        lines.push_back(text);
        return true;
    }

    /// Its client's end of a new connection.
    support::Connection connect()
    {
        support::ConnectedPair pair;
        rktl::SmartPtr<rksl::IOStream> stream(new rksl::NetIOStream(pair.ours, 50));
        EXPECT_TRUE(addStream(stream));
        return std::move(pair.peer);
    }

    size_t countClients() { return mListeners.getReadPtr(5000)->size(); }
    bool waitForClients(size_t count)
    {
        for (int i = 0; i < 1000 && countClients() != count; ++i)
            poll(nullptr, 0, 5);
        return countClients() == count;
    }

    /// The only client asks for frames.
    void requestFrames(int period, rksl::Set<rktl::String> const& images = {})
    {
        auto const listeners = mListeners.getWritePtr(5000);
        listeners->front().framesRequested = true;
        listeners->front().framePeriod = rktl::ElapsedTime(int64_t(period));
        listeners->front().imageTypes = images;
    }

    // Under the list's lock.
    std::vector<std::string> lines;
    std::vector<std::chrono::steady_clock::time_point> handled; // when each command was
};

rksl::Command commandOf(unsigned int type)
{
    return rksl::Command("meridane://m/c", type, 0);
}

TEST(CameraInterface, AnswersOneObjectOfEachClientInARound)
{
    TestInterface server(100);
    ObjectClient client(server.connect());
    Heartbeat greeting;
    EXPECT_TRUE(client.read(greeting));
    EXPECT_TRUE(greeting.getAttributes().empty());
    EXPECT_EQ(192, greeting.version);

    rksl::Command const first = commandOf(7), second = commandOf(9);
    client.stream << rktl::Integer(5) << first << second << rksl::Ping(); // an object of no use is skipped
    server.startStreamServers();
    rksl::Result result;
    ASSERT_TRUE(client.read(result));
    EXPECT_EQ(first.getID(), result.getCommandID());
    EXPECT_EQ(0, result.getCode());
    EXPECT_EQ("handled", result.getMessage());
    ASSERT_TRUE(client.read(result));
    EXPECT_EQ(second.getID(), result.getCommandID());
    EXPECT_EQ(-4, result.getCode());
    EXPECT_EQ("Unsupported command.", result.getMessage());
    Heartbeat answer;
    EXPECT_TRUE(client.read(answer));
    EXPECT_TRUE(answer.getAttributes().empty());
    EXPECT_EQ(1u, server.countClients());
    ASSERT_EQ(2u, server.handled.size());
    EXPECT_GE(server.handled[1] - server.handled[0], std::chrono::milliseconds(99)) << "in successive rounds";
}

TEST(CameraInterface, DropsWhoFailsAndKeepsTheOthers)
{
    TestInterface server;
    support::Connection stranger = server.connect(), liar = server.connect(), gone = server.connect(), polite = server.connect();
    ObjectClient failing(server.connect()), good(server.connect());
    server.startStreamServers();
    stranger.send(support::hex("F8 01 00 00 FF FF FF FF"));
    liar.send(support::hex("0D 00 00 00 04 00 00 00 01 02 03 04")); // a command of four bytes
    gone.reset();
    failing.stream << commandOf(8);
    EXPECT_TRUE(server.waitForClients(2));
    polite.send(support::hex("01 00 00 00 00 00 00 00"));
    EXPECT_TRUE(server.waitForClients(1));
    EXPECT_EQ(25u, polite.receiveFrame().size()) << "the greeting";
    EXPECT_LT(25u, polite.receiveFrame().size()) << "the heartbeat of the first round";
    EXPECT_EQ(support::hex("01 00 00 00 00 00 00 00"), polite.receiveFrame());
    EXPECT_TRUE(polite.waitForEnd());
    EXPECT_EQ(0, good.ask(commandOf(7)).getCode());
    good.stream.close();
    stranger.close();
    liar.close();
    server.stopStreamServers();
    ASSERT_EQ(4u, server.lines.size());
    for (std::string const& line : server.lines)
        EXPECT_EQ(0u, line.find("Reading from stream: ")) << line;
}

TEST(CameraInterface, SendsHeartbeats)
{
    VirtualClock clock;
    TestInterface server;
    ObjectClient client(server.connect());
    server.setVideoPosition(rktl::ElapsedTime(int64_t(60000)), true);
    server.startStreamServers();
    Heartbeat heartbeat;
    ASSERT_TRUE(client.read(heartbeat)); // the greeting
    ASSERT_TRUE(client.read(heartbeat)); // of the first round
    EXPECT_EQ("false", heartbeat.getAttribute("video-loss"));
    EXPECT_EQ("1 minute", heartbeat.getAttribute("video-position"));
    EXPECT_EQ("true", heartbeat.getAttribute("video-finished"));
    clock.advance(14999);
    EXPECT_FALSE(client.read(heartbeat, 50));
    server.setVideoLoss(true);
    clock.advance(1);
    ASSERT_TRUE(client.read(heartbeat));
    EXPECT_EQ("true", heartbeat.getAttribute("video-loss"));
    clock.advance(999);
    EXPECT_FALSE(client.read(heartbeat, 50));
    clock.advance(1);
    EXPECT_TRUE(client.read(heartbeat));
    server.stopStreamServers();
    client.stream.abort();
}

/// Numbers of the frames that reach the client, their flags behind them. A frame every 40 ms, from a tick on.
std::string framesAt(int period, uint32_t firstTick, std::vector<uint32_t> const& flags)
{
    VirtualClock clock(1700000000000, firstTick);
    TestInterface server;
    ObjectClient client(server.connect());
    server.requestFrames(period);
    auto const deliver = [&](int64_t position, uint32_t frameFlags) {
        Frame frame;
        frame.setTimePosition(rktl::TimeStamp::systemTime(), rktl::ElapsedTime(position));
        frame.setFlags(frameFlags);
        server.updateFrameListeners(frame);
        EXPECT_EQ(frameFlags, frame.getFlags()) << "what one client missed is no concern of the others";
    };
    for (size_t i = 0; i < flags.size(); ++i, clock.advance(40))
        deliver(int64_t(i), flags[i]);
    clock.advance(1000);
    deliver(-1, 0); // the last one
    std::string seen;
    for (Frame frame; client.read(frame) && frame.getPosition().toMilliseconds() >= 0;)
        seen += std::to_string(frame.getPosition().toMilliseconds()) + ":" + std::to_string(frame.getFlags()) + " ";
    client.stream.abort();
    return seen;
}

TEST(CameraInterface, KeepsToTheRateOfEachClient)
{
    std::vector<uint32_t> const none(11, 0);
    EXPECT_EQ("0:0 5:0 10:0 ", framesAt(200, 1000, none));
    EXPECT_EQ("0:0 2:0 3:0 4:0 5:0 7:0 8:0 9:0 10:0 ", framesAt(50, 1000, none)); // due at 0, 50, 100, 150, ... ms
    EXPECT_EQ("0:0 1:0 2:0 3:0 4:0 5:0 6:0 7:0 8:0 9:0 10:0 ", framesAt(1, 1000, none));
    EXPECT_EQ("0:1 5:28929 ", framesAt(200, 1000, {1, 256, 4, 0x7002, 0, 1})) << "0x7000 | 256 | 1: bits 8 to 15 are carried";
    EXPECT_EQ("0:0 5:0 10:0 ", framesAt(200, 0xFFFFFFFF - 99, none)) << "the ticks start over between frames 2 and 3";
}

TEST(CameraInterface, KnowsWhatItsClientsWant)
{
    TestInterface server;
    rksl::Set<rktl::String> images;
    rkvl::Resolution size(7, 7);
    EXPECT_FALSE(server.getRequestedImages(images, size));
    EXPECT_EQ(rkvl::Resolution(7, 7), size);
    ObjectClient client(server.connect());
    EXPECT_TRUE(server.getRequestedImages(images, size));
    EXPECT_EQ(rkvl::Resolution(-1, -1), size);
    rksl::Set<rktl::String> wanted;
    wanted.insert("a");
    server.requestFrames(1, wanted);
    server.startStreamServers();
    for (int i = 0; i < 400 && images.empty(); ++i) {
        EXPECT_TRUE(server.getRequestedImages(images, size));
        poll(nullptr, 0, 5);
    }
    EXPECT_EQ(wanted, images);
    EXPECT_EQ(rkvl::Resolution(0, 0), size);
    client.stream.close();
    EXPECT_TRUE(server.waitForClients(0));
}

TEST(CameraInterface, RefusesMoreThanSixtyFourClients)
{
    TestInterface server;
    std::vector<support::Connection> clients;
    for (int i = 0; i < 64; ++i)
        clients.push_back(server.connect());
    support::ConnectedPair pair;
    rktl::SmartPtr<rksl::IOStream> stream(new rksl::NetIOStream(pair.ours, 50));
    EXPECT_FALSE(server.addStream(stream));
    EXPECT_TRUE(pair.peer.waitForEnd());
    EXPECT_EQ(64u, server.countClients());
    clients.clear();
}

// Silent, stalled and stuck clients at the same time; the limit of one is the limit of all.
TEST(CameraInterface, EndsWithinTenSeconds)
{
    auto const start = std::chrono::steady_clock::now();
    std::vector<support::Connection> clients;
    {
        TestInterface server;
        for (int i = 0; i < 10; ++i)
            clients.push_back(server.connect());
        clients[0].send(support::hex("F8 01"));
        server.requestFrames(0);
        for (int i = 0; i < 10; ++i) {
            Frame frame;
            frame.setAttribute("large", std::string(100000, 'x'));
            server.updateFrameListeners(frame);
        }
        server.startStreamServers();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(CameraInterface, SaysAtMostFiveLinesASecond)
{
    VirtualClock clock;
    TestInterface server;
    ClientLog log(server);
    for (int i = 0; i < 8; ++i)
        log.line(rktl::LogType::Info, "x");
    clock.advance(1000);
    log.line(rktl::LogType::Info, "y");
    EXPECT_EQ((std::vector<std::string>{"x", "x", "x", "x", "x", "3 lines about clients were left out.", "y"}), server.lines);
}

} // namespace
