#include "streams/rksl_NetStreamServer.h"

#include "misc/rktl_Integer.h"
#include "misc/rktl_SmartPtr.h"
#include "streams/rksl_IOStream.h"
#include "streams/rksl_StreamCloser.h"
#include "streams/rksl_StreamListener.h"
#include "support/loopback.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

/// Greets who connects with a number and keeps the stream.
class Greeter : public rksl::StreamListener {
public:
    bool addStream(rktl::SmartPtr<rksl::IOStream>& stream) override
    {
        stream->write(rktl::Integer(++count));
        closer.close(stream);
        return true;
    }

    rksl::StreamCloser closer;
    int count = 0;
};

support::Bytes greeting(unsigned char number)
{
    support::Bytes frame = support::hex("F8 01 00 00 04 00 00 00 00 00 00 00");
    frame[8] = number;
    return frame;
}

TEST(NetStreamServer, HandsOverOneConnectionATick)
{
    Greeter greeter;
    uint16_t const port = support::freePort();
    rksl::NetStreamServer server(port, 0xFFFFFFFF, 50, 20);
    EXPECT_FALSE(server.isListening());
    EXPECT_TRUE(server.setStreamListener(&greeter));
    EXPECT_TRUE(server.listen());
    EXPECT_FALSE(server.listen()) << "twice";
    support::Connection const first = support::Connection::toWithin(port, 2000);
    support::Connection const second = support::Connection::to(port);
    EXPECT_EQ(greeting(1), first.receiveFrame());
    EXPECT_EQ(greeting(2), second.receiveFrame());
    EXPECT_TRUE(server.stopListening());
    EXPECT_FALSE(server.isListening());
    EXPECT_FALSE(support::Connection::to(port).isOpen());

    // The port is free again at once, with connections of the first run still around.
    EXPECT_TRUE(server.listen());
    EXPECT_EQ(greeting(3), support::Connection::toWithin(port, 2000).receiveFrame());
}

TEST(NetStreamServer, TriesAnOccupiedPortAgain)
{
    Greeter greeter;
    support::OccupiedPort occupied;
    rksl::NetStreamServer server(occupied.port(), 0xFFFFFFFF, 50, 5);
    server.setStreamListener(&greeter);
    EXPECT_TRUE(server.listen());
    support::Connection const waiting = support::Connection::to(occupied.port()); // reaches whoever has the port
    EXPECT_TRUE(waiting.receive(1, 50).empty());
    EXPECT_TRUE(server.isListening());
    occupied.free();
    EXPECT_EQ(greeting(1), support::Connection::toWithin(occupied.port(), 2000).receiveFrame());
}

/// Closes when it is told, or aborted.
class SlowStream : public rksl::IOStream {
public:
    unsigned int getNextType() const override { return 1; }
    bool isEmpty() const override { return true; }
    unsigned int read(rksl::Serializable&) override { return 0; }
    unsigned int skip() override { return 0; }
    IStream& operator>>(rksl::Serializable&) override { return *this; }
    bool readNextObject(unsigned char*&, unsigned int&) override { return false; }
    void flush() override { }
    void close() override { mayClose.wait(false); }
    unsigned int write(rksl::Serializable const&) override { return 0; }
    OStream& operator<<(rksl::Serializable const&) override { return *this; }
    OStream& operator<<(IStream&) override { return *this; }
    void abort() override
    {
        aborted = true;
        allow();
    }
    void allow()
    {
        mayClose = true;
        mayClose.notify_all();
    }

    std::atomic<bool> mayClose = false;
    std::atomic<bool> aborted = false;
};

TEST(StreamCloser, ClosesSideBySideAndBreaksOffWhatTakesTooLong)
{
    rksl::StreamCloser closer;
    rktl::SmartPtr<SlowStream> const quick(new SlowStream);
    rktl::SmartPtr<SlowStream> const slow(new SlowStream);
    closer.close(slow);
    closer.close(quick);
    EXPECT_EQ(2u, closer.getCount());
    quick->allow();
    while (closer.getCount() > 1)
        std::this_thread::yield();
    closer.finish(20);
    EXPECT_EQ(0u, closer.getCount());
    EXPECT_FALSE(quick->aborted);
    EXPECT_TRUE(slow->aborted);
}

} // namespace
