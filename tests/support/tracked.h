#pragma once

#include "BaseClasses/Object.h"
#include "BaseClasses/ProcessFrame.h"
#include "support/virtual_clock.h"

#include <cstdint>

/// A frame and the objects on it, as the tracking stage hands them on. Time is the frame's: moving the frame on moves the
/// clocks. No other virtual clock may live beside it.
class TrackedScene {
public:
    static constexpr int64_t Start = 1700000000000; // ms since the epoch, of position 0

    explicit TrackedScene(int width = 1000, int height = 1000)
        : mClock(Start, 0)
    {
        resize(width, height);
        at(0);
    }

    void resize(int width, int height) { frame.setResolution(rkvl::Resolution(width, height)); }

    static rktl::TimeStamp timeAt(int64_t position)
    {
        return {(Start + position) / 1000, static_cast<uint16_t>((Start + position) % 1000), false};
    }

    /// The moment of the frame: milliseconds since the start of the stream. Objects stay as they are.
    ProcessFrame& at(int64_t position)
    {
        mClock.setWall(Start + position);
        mClock.setTicks(static_cast<uint32_t>(position));
        frame.setTimePosition(timeAt(position), rktl::ElapsedTime(position));
        return frame;
    }

    /// An object's next box, at the moment of the frame. A new object is a moving one, tracked.
    Object& put(uint32_t id, rkml::BoundingBox<int> const& box)
    {
        Object& object = frame.getObjects()[static_cast<int32_t>(id)];
        if (object.getTrack().empty()) {
            object.setId(id);
            object.setState(Object::tracked);
        }
        object.insert(box, {}, frame.getTimeStamp());
        return object;
    }

    ProcessFrame frame;

private:
    VirtualClock mClock;
};
