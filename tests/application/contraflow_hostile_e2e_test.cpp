#include "BaseClasses/Heartbeat.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "streams/rksl_Ping.h"
#include "support/contraflow_server.h"
#include "support/object_client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <list>
#include <random>
#include <sstream>
#include <thread>

// What the port has to bear from whoever reaches it. A few seconds of it by default; the environment makes more of it:
// CONTRAFLOW_HOSTILE_SECONDS how long, CONTRAFLOW_HOSTILE_SEED another run than the usual one.

using support::Bytes;
using support::Connection;
using support::embedded;
using support::endOfFile;

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t memoryFactor = 6; // freed memory is kept back, or shadowed
#else
constexpr size_t memoryFactor = 1;
#endif

unsigned int fromEnvironment(char const* name, unsigned int otherwise)
{
    char const* const text = std::getenv(name);
    return text ? unsigned(std::atoi(text)) : otherwise;
}

Bytes frameOf(rksl::Serializable const& object)
{
    rksl::StreamData data;
    EXPECT_TRUE(data.fromObj(object));
    return Bytes(data.getBytes(), data.getBytes() + data.getLength());
}

FrameRequest requestOf(std::initializer_list<char const*> images)
{
    FrameRequest request;
    request.tracks = 1;
    for (char const* image : images)
        request.imageTypes.insert(image);
    return request;
}

Bytes everyImage()
{
    return frameOf(ConnectionCmd::frameRequest(embedded,
        requestOf({"Activity Image", "Background Image", "Exclusion Mask", "Foreground Image", "Native Image", "Peripheral Image",
            "Processed Image"})));
}

/// What the application says of itself below /proc.
class Resources {
public:
    explicit Resources(pid_t pid)
        : mFolder("/proc/" + std::to_string(pid))
    {
    }

    size_t descriptors() const
    {
        auto const files = std::filesystem::directory_iterator(mFolder + "/fd");
        return size_t(std::distance(begin(files), end(files)));
    }

    size_t memory() const ///< MiB
    {
        std::ifstream status(mFolder + "/statm");
        size_t total = 0, resident = 0;
        status >> total >> resident;
        return resident * size_t(sysconf(_SC_PAGESIZE)) >> 20;
    }

private:
    std::string mFolder;
};

/// Frames of the protocol with something wrong in them; the same ones for the same seed.
class Mutator {
public:
    explicit Mutator(unsigned int seed)
        : mRandom(seed)
    {
        mFrames = {frameOf(rksl::Command(embedded, 3004, 0)), frameOf(rksl::Command(embedded, 3002, 7)),
            frameOf(rksl::Command(embedded, 3012, 0)), frameOf(rksl::Command(embedded, 2005, 0)), everyImage(),
            frameOf(ConnectionCmd::frameRequest(embedded, requestOf({}))), frameOf(rksl::Ping()), frameOf(Heartbeat()),
            frameOf(rksl::Result(rksl::Command(embedded, 1, 1), 0, "x")), endOfFile};
    }

    unsigned int below(size_t limit) { return unsigned(mRandom() % limit); }

    Bytes next()
    {
        Bytes frame = mFrames[below(mFrames.size())];
        for (unsigned int changes = below(4); changes > 0 && !frame.empty(); --changes)
            change(frame);
        if (frame.size() >= 8 && below(3) > 0) { // the body is wrong, but whole
            size_t const body = frame.size() - 8;
            for (unsigned int i = 0; i < 4; ++i)
                frame[4 + i] = static_cast<unsigned char>(body >> 8 * i);
        }
        return frame;
    }

private:
    void change(Bytes& frame)
    {
        size_t const at = below(frame.size());
        switch (below(6)) {
        case 0:
            frame[at] = static_cast<unsigned char>(mRandom());
            break;
        case 1:
            frame[at] ^= static_cast<unsigned char>(1 << below(8));
            break;
        case 2: { // a length that is too much, or wraps
            uint32_t const lengths[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8, uint32_t(frame.size())};
            uint32_t const length = lengths[below(7)];
            for (unsigned int i = 0; i < 4 && at + i < frame.size(); ++i)
                frame[at + i] = static_cast<unsigned char>(length >> 8 * i);
            break;
        }
        case 3:
            frame.resize(at);
            break;
        case 4: {
            Bytes const piece(frame.begin() + long(at), frame.begin() + long(at + below(frame.size() - at)));
            frame.insert(frame.begin() + long(below(frame.size())), piece.begin(), piece.end());
            break;
        }
        default: // another record in its place
            Bytes const& other = mFrames[below(mFrames.size())];
            frame.insert(frame.begin() + long(at), other.begin(), other.end());
        }
    }

    std::mt19937 mRandom;
    std::vector<Bytes> mFrames;
};

class ContraflowUnderAttack : public ContraflowServer {
protected:
    unsigned int mSeconds = fromEnvironment("CONTRAFLOW_HOSTILE_SECONDS", 4);
    unsigned int mSeed = fromEnvironment("CONTRAFLOW_HOSTILE_SEED", 20240607);
};

TEST_F(ContraflowUnderAttack, KeepsServingAGoodClient)
{
    constexpr size_t attackersMax = 30, stuckMax = 3;
    ChildProcess app = serve();
    support::ObjectClient good(connect());
    ASSERT_EQ(0, good.ask(ConnectionCmd::frameRequest(embedded, requestOf({"Native Image"}))).getCode());
    Resources const resources(app.pid());
    size_t const memoryBefore = resources.memory();

    Mutator mutator(mSeed);
    std::list<Connection> attackers;
    std::list<Connection> stuck; // want everything and read nothing
    size_t sent = 0, connections = 0, frames = 0, bursts = 0, memoryMost = 0;
    for (auto const end = Clock::now() + std::chrono::seconds(mSeconds); Clock::now() < end; ++bursts) {
        for (int i = 0; i < 3 && attackers.size() < attackersMax; ++i, ++connections)
            attackers.push_back(Connection::to(mPort));
        if (stuck.size() < stuckMax) {
            stuck.push_back(Connection::to(mPort));
            stuck.back().send(everyImage(), 100);
        } else if (mutator.below(50) == 0) {
            stuck.pop_front();
        }
        for (auto attacker = attackers.begin(); attacker != attackers.end();) {
            bool gone = false;
            for (unsigned int n = mutator.below(4); n > 0 && !gone; --n, ++sent)
                gone = !attacker->send(mutator.next(), 20);
            gone = gone || attacker->drain() || mutator.below(12) == 0;
            if (gone && mutator.below(2) == 0)
                attacker->reset();
            attacker = gone ? attackers.erase(attacker) : std::next(attacker);
        }

        // The good client has its answer, in spite of all that.
        rksl::Ping ping;
        good.stream << ping;
        auto const asked = Clock::now();
        for (bool answered = false; !answered;) {
            ASSERT_TRUE(good.stream.wait(5000)) << "seed " << mSeed << ", burst " << bursts << "\n" << app.text();
            bool const isFrame = good.stream.getNextType() == 3;
            Heartbeat heartbeat;
            frames += isFrame;
            if (good.stream.getNextType() != heartbeat.getTypeId())
                good.stream.skip();
            else
                answered = good.stream.read(heartbeat) > 0 && heartbeat.getAttributes().empty();
        }
        ASSERT_LT(Clock::now() - asked, 5s) << "seed " << mSeed << ", burst " << bursts;
        memoryMost = std::max(memoryMost, resources.memory());
        app.waitFor("ThreadSanitizer", 0ms); // takes in what was printed
    }
    std::cout << "seed " << mSeed << ": " << bursts << " bursts, " << connections << " attackers, " << sent
              << " frames from them, " << frames << " frames to the good client, memory " << memoryBefore << " MiB, at most "
              << memoryMost << " MiB\n";
    EXPECT_LT(memoryMost, memoryBefore + 200 * memoryFactor);
    EXPECT_GT(frames, 10 * size_t(mSeconds) / memoryFactor) << "of 25 a second";

    attackers.clear();
    stuck.clear();
    good.stream.close();
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(15s)) << app.text();
    size_t const lines = size_t(std::count(app.text().begin(), app.text().end(), '\n'));
    EXPECT_LT(lines, 100 + 7 * size_t(mSeconds)) << "clients fill the log\n" << app.text();
}

TEST_F(ContraflowUnderAttack, LosesNothingWhileClientsComeAndGoAndItReloads)
{
    unsigned int const reloadEach = std::clamp(mSeconds / 2, 2u, 10u); // s
    ChildProcess app = serve();
    connect(); // the application is up
    Resources const resources(app.pid());
    auto const visit = [this](std::mt19937& random) {
        Connection client = Connection::to(mPort);
        if (!client.isOpen()) {
            poll(nullptr, 0, 20); // between two passes
            return false;
        }
        client.send(everyImage());
        for (unsigned int left = random() % 60; left > 0; --left) {
            Bytes const frame = client.receiveFrame(2000);
            if (frame.size() < 8 || frame[0] == 1)
                break;
        }
        switch (random() % 3) {
        case 0:
            client.reset();
            break;
        case 1:
            client.send(endOfFile);
            client.waitForEnd();
            break;
        default: // closes
            break;
        }
        return true;
    };

    auto const settled = [&] { // once no connection is being closed any more
        size_t descriptors = resources.descriptors();
        for (int same = 0, i = 0; same < 20 && i < 1000; ++i) {
            poll(nullptr, 0, 20);
            same = descriptors == resources.descriptors() ? same + 1 : 0;
            descriptors = resources.descriptors();
        }
        return descriptors;
    };
    std::mt19937 first(mSeed);
    for (int i = 0; i < 3; ++i)
        visit(first);
    ASSERT_TRUE(app.waitFor("Now processing"));
    size_t const descriptorsBefore = settled();
    size_t const memoryBefore = resources.memory();

    std::atomic<bool> over = false;
    std::atomic<size_t> visits = 0;
    std::vector<std::thread> visitors;
    for (unsigned int i = 0; i < 20; ++i)
        visitors.emplace_back([&, i] {
            for (std::mt19937 random(mSeed + i); !over;)
                visits += visit(random);
        });
    unsigned int reloads = 0;
    for (unsigned int second = 0; second < mSeconds; ++second) {
        app.waitFor("ThreadSanitizer", 1000ms);
        if (second % reloadEach == reloadEach - 1) {
            app.signal(SIGUSR1);
            ++reloads;
            EXPECT_TRUE(app.waitFor("Listening on port", 10000ms)) << "reload " << reloads << "\n" << app.text();
        }
    }
    over = true;
    for (std::thread& visitor : visitors)
        visitor.join();
    EXPECT_EQ(descriptorsBefore, settled());
    size_t const memoryAfter = resources.memory();
    std::cout << "seed " << mSeed << ": " << visits << " visits, " << reloads << " reloads, memory " << memoryBefore
              << " MiB, then " << memoryAfter << " MiB, " << descriptorsBefore << " descriptors\n";
    EXPECT_LT(memoryAfter, memoryBefore + 60 * memoryFactor);
    EXPECT_LT(0u, visits);
    auto const start = Clock::now();
    app.signal(SIGTERM);
    EXPECT_EQ(0, app.waitForExit(10s)) << app.text();
    EXPECT_LT(Clock::now() - start, 10s);
}

} // namespace
