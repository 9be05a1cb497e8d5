#include "streams/rksl_NetIOStream.h"

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_MemIOStream.h"
#include "support/loopback.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <list>

using support::Bytes;
using support::hex;
using support::messageOf;

namespace {

// An rktl::Integer is type 504 (01F8) with four bytes of body.
Bytes integerFrame(unsigned char value)
{
    Bytes frame = hex("F8 01 00 00 04 00 00 00 00 00 00 00");
    frame[8] = value;
    return frame;
}

Bytes const endOfFile = hex("01 00 00 00 00 00 00 00");

class NetIOStream : public testing::Test {
protected:
    void TearDown() override
    {
        peer.close(); // or the stream would wait for its end
    }

    bool isReadable() { return stream.wait(2000); }

    int readInteger()
    {
        rktl::Integer value;
        stream.read(value);
        return value;
    }

    support::ConnectedPair pair;
    support::Connection& peer = pair.peer;
    rksl::NetIOStream stream{pair.ours, 50};
};

double secondsOf(auto action)
{
    auto const start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(NetIOStream, CarriesFramesBothWays)
{
    EXPECT_TRUE(stream.isEmpty());
    EXPECT_FALSE(stream.isEOF());
    EXPECT_EQ(12u, stream.write(rktl::Integer(7)));
    stream << rktl::Integer(8);
    EXPECT_EQ(integerFrame(7), peer.receive(12));
    EXPECT_EQ(integerFrame(8), peer.receive(12));

    Bytes reserved = integerFrame(9);
    reserved[2] = reserved[3] = 0xAA; // ignored
    peer.send(reserved);
    peer.send(integerFrame(10));
    peer.send(integerFrame(11));
    peer.send(endOfFile);
    ASSERT_TRUE(isReadable());
    EXPECT_EQ(504u, stream.getNextType());
    rktl::Integer value;
    EXPECT_EQ(12u, stream.read(value));
    EXPECT_EQ(9, value);
    EXPECT_EQ(12u, stream.skip());
    unsigned char* data = nullptr;
    unsigned int length = 0;
    ASSERT_TRUE(stream.readNextObject(data, length));
    EXPECT_EQ(integerFrame(11), Bytes(data, data + length));
    delete[] data;
    ASSERT_TRUE(isReadable());
    EXPECT_TRUE(stream.isEOF());
    EXPECT_EQ("rksl::NetIOStream::readObject( ) - trying to read EOF", messageOf([&] { stream.skip(); }));
    EXPECT_TRUE(stream.isEOF()) << "an end of file stays";
}

// A record of another type is refused, but does not stop the stream; nor does a body that is none.
TEST_F(NetIOStream, TakesWhatItRefusesOffTheStream)
{
    peer.send(integerFrame(1));
    peer.send(hex("F8 01 00 00 02 00 00 00 00 00"));
    peer.send(integerFrame(3));
    rktl::String text;
    EXPECT_EQ("rksl::NetIOStream::read() - The read object id does not match the Serializable's object id:  504 != 501",
        messageOf([&] { stream.read(text); }));
    EXPECT_EQ("rksl::NetIOStream::read() - Unable to set the serializable object's data", messageOf([&] { readInteger(); }));
    EXPECT_EQ(3, readInteger());
}

TEST_F(NetIOStream, IsEmptyUntilAFrameIsWhole)
{
    Bytes const frame = integerFrame(5);
    for (size_t i = 0; i + 1 < frame.size(); ++i) {
        peer.send({frame[i]});
        EXPECT_TRUE(stream.isEmpty()) << i;
        EXPECT_FALSE(stream.isEOF()) << i;
    }
    peer.send({frame.back()});
    ASSERT_TRUE(isReadable());
    EXPECT_EQ(5, readInteger());
    EXPECT_TRUE(stream.isEmpty());
}

// More than one slice of receiving and several growths of the buffer, and then a small frame in the same buffer.
TEST_F(NetIOStream, ReadsALargeFrameInPieces)
{
    rktl::String text(std::string(5000000, 'x'));
    text[4999999] = 'y';
    rksl::MemIOStream memory;
    memory << text << rktl::Integer(1);
    unsigned char const* bytes = nullptr;
    unsigned int length = 0;
    memory.getBuffer(bytes, length);
    size_t sent = 0;
    auto const sendSome = [&] { // the pair holds less than the frame
        size_t const end = std::min<size_t>(length, sent + 50000);
        ASSERT_TRUE(peer.send(Bytes(bytes + sent, bytes + end)));
        sent = end;
    };
    while (sent < length) {
        sendSome();
        ASSERT_EQ(sent < length - 12, stream.isEmpty());
    }
    rktl::String read;
    EXPECT_EQ(length - 12, stream.read(read));
    EXPECT_TRUE(read == text);
    EXPECT_EQ(1, readInteger());
}

TEST_F(NetIOStream, TellsWhyAFrameDoesNotCome)
{
    struct {
        char const* bytes;
        char const* reason;
    } const cases[] = {
        {"", "getNextType( ) - failed"},
        {"F8 01 00 00", "readObject( ) - couldn't read type"},
        {"F8 01 00 00 04 00 00 00 01", "readObject( ) - failed"},
        {"F8 01 00 00 F9 FF FF 03", "readObject( ) - a frame of 67108857 bytes, header not counted, is too long"},
        {"F8 01 00 00 FF FF FF FF", "readObject( ) - a frame of 4294967295 bytes, header not counted, is too long"},
    };
    for (auto const& [bytes, reason] : cases) {
        support::ConnectedPair other;
        rksl::NetIOStream broken(other.ours, 1);
        other.peer.send(hex(bytes));
        other.peer.close();
        ASSERT_TRUE(broken.wait(2000));
        EXPECT_EQ(std::string("rksl::NetIOStream::") + reason, messageOf([&] { broken.skip(); }));
    }
}

// Many peers that each announce a large frame and send most of it must not take all memory together.
TEST(FrameAssembly, SharesOneBoundOfMemory)
{
    std::list<rksl::FrameAssembly> frames;
    size_t taken = 0;
    auto const receive = [&](rksl::FrameAssembly& frame) {
        Bytes const header = hex("F8 01 00 00 F8 FF FF 03");
        std::copy(header.begin(), header.end(), frame.room().begin());
        frame.add(8);
        for (auto room = frame.room(); !room.empty(); room = frame.room()) {
            taken += room.size();
            frame.add(uint32_t(room.size()));
        }
        return frame.isWhole();
    };
    EXPECT_TRUE(receive(frames.emplace_back()));
    EXPECT_TRUE(receive(frames.emplace_back()));
    EXPECT_EQ(2u * ((64 << 20) - 8), taken);
    EXPECT_FALSE(receive(frames.emplace_back())) << "the third of 64 MiB";
    EXPECT_TRUE(frames.back().isRefused());
    EXPECT_FALSE(frames.back().isTooLong());
    frames.front().clear();
    frames.front().room(); // ready for another frame: what it held is free
    EXPECT_TRUE(receive(frames.emplace_back()));
}

TEST_F(NetIOStream, GivesUpAPeerThatStallsInMidFrame)
{
    VirtualClock clock;
    peer.send(hex("F8 01 00 00"));
    EXPECT_TRUE(stream.isEmpty());
    clock.advance(14999);
    EXPECT_TRUE(stream.isEmpty());
    peer.send(hex("04")); // goes on
    EXPECT_TRUE(stream.isEmpty());
    clock.advance(14999);
    EXPECT_TRUE(stream.isEmpty());
    clock.advance(1);
    EXPECT_FALSE(stream.isEmpty());
    EXPECT_EQ("rksl::NetIOStream::readObject( ) - stalled in mid-frame", messageOf([&] { stream.skip(); }));

    support::ConnectedPair idle; // between frames a peer may be silent for as long as it likes
    rksl::NetIOStream silent(idle.ours, 1);
    idle.peer.send(integerFrame(1));
    ASSERT_TRUE(silent.wait(2000));
    silent.skip();
    clock.advance(1000000);
    EXPECT_TRUE(silent.isEmpty());
    idle.peer.close();
}

// The peer reads nothing: what it and the kernel cannot take is overwritten from the oldest on, in whole frames.
TEST_F(NetIOStream, LosesTheOldestFramesOfASlowPeer)
{
    constexpr unsigned int frames = 300;
    rktl::String const filler(std::string(20000, 'x'));
    double const spent = secondsOf([&] {
        for (unsigned int i = 0; i < frames; ++i)
            stream.write(rktl::String(std::to_string(1000 + i) + filler));
    });
    EXPECT_LT(spent, 5.0) << "writing waited for the peer";
    std::vector<int> numbers;
    for (;;) {
        Bytes const frame = peer.receiveFrame(numbers.empty() || numbers.back() != 1000 + int(frames) - 1 ? 5000 : 0);
        if (frame.empty())
            break;
        ASSERT_EQ(8u + 4 + 20004 + 1, frame.size());
        numbers.push_back(std::stoi(std::string(frame.begin() + 12, frame.begin() + 16)));
    }
    ASSERT_LE(50u, numbers.size());
    EXPECT_GT(frames, numbers.size());
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    for (size_t i = 1; i <= 50; ++i)
        EXPECT_EQ(1000 + int(frames - i), numbers[numbers.size() - i]) << "the newest 50 are kept";
}

TEST_F(NetIOStream, ClosesInOrder)
{
    stream.write(rktl::Integer(1));
    peer.send(integerFrame(2)); // dropped
    peer.send(endOfFile);
    peer.send(integerFrame(3)); // behind the end
    EXPECT_LT(secondsOf([&] { stream.close(); }), 1.0);
    EXPECT_EQ(integerFrame(1), peer.receive(12));
    EXPECT_EQ(endOfFile, peer.receive(8));
    EXPECT_TRUE(peer.waitForEnd());
    EXPECT_EQ("rksl::NetIOStream::isEmpty( ) - failed", messageOf([&] { stream.isEmpty(); }));
}

TEST_F(NetIOStream, WaitsSevenAndAHalfSecondsForThePeersEnd)
{
    double const spent = secondsOf([&] { stream.close(); });
    EXPECT_LE(7.4, spent);
    EXPECT_GT(9.0, spent);
    EXPECT_EQ(endOfFile, peer.receive(8));
    EXPECT_TRUE(peer.waitForEnd());
}

TEST_F(NetIOStream, IsBrokenOffByAnAbort)
{
    rktl::String const large(std::string(4000000, 'x'));
    stream.write(large); // more than the kernel takes: the pump is busy
    std::thread closing([&] { stream.close(); });
    EXPECT_EQ(8u, peer.receive(8).size());
    EXPECT_LT(secondsOf([&] {
        stream.abort();
        closing.join();
    }),
        1.0);
}

// Would end the test program by a signal, or leave descriptors behind.
TEST(NetIOStreams, LeaveNothingBehind)
{
    int const before = dup(0);
    for (int i = 0; i < 20; ++i) {
        support::ConnectedPair pair;
        rksl::NetIOStream stream(pair.ours, 50);
        pair.peer.close();
        for (int n = 0; n < 5; ++n)
            stream.write(rktl::Integer(n));
    }
    int const after = dup(0);
    EXPECT_EQ(before + 1, after);
    close(before);
    close(after);
}

} // namespace
