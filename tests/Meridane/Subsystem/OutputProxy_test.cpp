#include "Meridane/Subsystem/OutputProxy.h"

#include "Meridane/Subsystem/ConnectionCmd.h"
#include "misc/rktl_url.h"
#include "support/object_client.h"

#include <gtest/gtest.h>

namespace {

/// A proxy without a port whose only client is the test.
class TestProxy : public OutputProxy {
public:
    TestProxy()
        : OutputProxy(0, nullptr)
    {
        support::ConnectedPair pair;
        stream = rktl::SmartPtr<rksl::IOStream>(new rksl::NetIOStream(pair.ours, 50));
        EXPECT_TRUE(addStream(stream));
        peer = std::move(pair.peer);
    }

    rksl::Result ask(rksl::Command const& command, rksl::IOStream const* from)
    {
        rksl::Result result;
        handled = handleCommand(command, from, result);
        return result;
    }

    Listener client() { return mListeners.getReadPtr(1000)->front(); }

    rktl::SmartPtr<rksl::IOStream> stream;
    support::Connection peer;
    bool handled = false;
};

rktl::url const anyCamera("meridane://m/c");

TEST(OutputProxy, RemembersWhatAClientWants)
{
    struct {
        int fps;
        unsigned int stored;
        int period; // ms
    } const cases[] = {{30, 30, 33}, {0, 0, 1}, {1, 1, 1000}, {1001, 1001, 0}, {65536 + 10, 10, 100}, {-1, 65535, 0}};
    TestProxy proxy;
    for (auto const& [fps, stored, period] : cases) {
        FrameRequest request;
        request.fps = fps;
        request.tracks = fps;
        request.imageTypes.insert("image for " + std::to_string(fps));
        request.resolution = rkvl::Resolution(9, 9);
        EXPECT_EQ(0, proxy.ask(ConnectionCmd::frameRequest(anyCamera, request), proxy.stream.get()).getCode());
        auto const client = proxy.client();
        EXPECT_TRUE(client.framesRequested);
        EXPECT_EQ(fps != 0, client.sendTracks);
        EXPECT_EQ(stored, client.fps) << fps;
        EXPECT_EQ(period, client.framePeriod.toMilliseconds()) << fps;
        EXPECT_EQ(0, client.nextFrameTime.toMilliseconds());
        EXPECT_EQ(request.imageTypes, client.imageTypes);
        rksl::Set<rktl::String> images;
        rkvl::Resolution size;
        EXPECT_TRUE(proxy.getRequestedImages(images, size)) << "at once, though no round has passed";
        EXPECT_EQ(1u, images.count("image for " + std::to_string(fps)));
        EXPECT_EQ(rkvl::Resolution(0, 0), size) << "a wanted size has no effect";
    }
}

TEST(OutputProxy, SaysWhyItRefuses)
{
    TestProxy proxy;
    auto const expect = [&](bool handled, int code, char const* message, rksl::Command const& command,
                            rksl::IOStream const* from) {
        rksl::Result const result = proxy.ask(command, from);
        EXPECT_EQ(handled, proxy.handled);
        EXPECT_EQ(code, result.getCode());
        EXPECT_EQ(message, result.getMessage());
    };
    rksl::IOStream const* const known = proxy.stream.get();
    ConnectionCmd const request = ConnectionCmd::frameRequest(anyCamera, FrameRequest());
    expect(true, -2, "Unable to obtain lock on listeners.", request, nullptr);
    rksl::MemIOStream unknown;
    expect(true, -1, "Unable to find listener.", request, &unknown);
    expect(true, -4, "Unsupported ConnectionCmd sub-type", rksl::Command("", 3004, 1), known);
    expect(true, 0, "", rksl::Command("no url", 3004, 0), known);
    expect(true, 0, "", rksl::Command("", 65536 + 3004, 0), known); // the low 16 bits count
    expect(true, -1, "", rksl::Command("", 3002, 11), known);
    expect(true, -1, "", rksl::Command("", 3012, 1), known);
    expect(false, -4, "Embedded SDK cannot handle this command.", rksl::Command("", 2005, 0), known);
    EXPECT_FALSE(support::thrownBy([&] { proxy.ask(rksl::Command("", 3004, 2), known); }).empty()) << "a request without one";
    EXPECT_FALSE(proxy.client().framesRequested);
}

} // namespace
