#pragma once

#include "support/bytes.h"
#include "support/tracked.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// A spy that is shown a frame every 200 ms.
template <class Spy> class SpyRun {
public:
    template <class... Args>
    explicit SpyRun(Args&&... args)
        : spy(std::forward<Args>(args)...)
    {
    }

    /// The next frame: 'A' when an event was raised or extended, else '.'. The events stay in `events`.
    char see(std::function<void()> const& prepare)
    {
        scene.at(200 * frames++);
        prepare();
        spy.spy(scene.frame);
        events.clear();
        spy.getEvents(events);
        return events.empty() ? '.' : 'A';
    }

    /// Object 7 with each of the boxes, one a frame.
    std::string along(std::vector<rkml::BoundingBox<int>> const& boxes)
    {
        std::string alarms;
        for (auto const& box : boxes)
            alarms += see([&] { scene.put(7, box); });
        return alarms;
    }

    TrackedScene scene;
    Spy spy;
    int frames = 0;
    rksl::List<Event> events; // of the last frame
};

/// A spy's forms say the same, both ways, and no part of its binary form is taken for the whole.
template <class Spy> void expectBothFormsSurvive(Spy const& spy)
{
    Spy fromText, fromBytes;
    ASSERT_TRUE(fromText.fromXML(spy.toXML().c_str())) << spy.toXML();
    EXPECT_EQ(spy.toXML(), fromText.toXML());
    support::Bytes const bytes = support::toBin(spy);
    EXPECT_EQ(bytes.size(), support::fromBin(fromBytes, bytes));
    EXPECT_EQ(spy.toXML(), fromBytes.toXML());
    EXPECT_EQ(bytes, support::toBin(fromBytes));
    EXPECT_EQ(bytes, support::toBin(fromText));
    EXPECT_EQ("", spy.toXML(nullptr));
    support::expectEveryPrefixThrows<Spy>(bytes);
    for (char const* refused : {"", "<x/>", "no xml", "<x><EventSpy/></x>"})
        EXPECT_FALSE(fromText.fromXML(refused)) << refused;
}

/// What the spy's binary form holds behind that of a spy over frames: form is what was written there.
template <class Spy> void expectBinaryTail(Spy const& spy, rksl::MemIOStream const& form)
{
    support::Bytes const bytes = support::toBin(spy);
    support::Bytes tail = support::toBin(form);
    tail.erase(tail.begin(), tail.begin() + 4); // the length of the stream
    ASSERT_LE(tail.size(), bytes.size());
    EXPECT_EQ(tail, support::Bytes(bytes.end() - static_cast<std::ptrdiff_t>(tail.size()), bytes.end()));
}
