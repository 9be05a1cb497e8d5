#pragma once

#include "BaseClasses/Frame.h"
#include "misc/rktl_SmartPtr.h"
#include "trackers/EventSpies/Sighting.h"

#include <cstdint>
#include <vector>

/// One frame as all spies see it: what several of them need of it is made once. Belongs to whoever shows the frame to the spies,
/// and serves for the next frame again. Not thread-safe.
class FrameView {
public:
    /// Looks at this frame, which has to stay as it is until the next call or the end of the view's use.
    void show(Frame const& frame);

    /// Lets go of the frame and of what was made of it: whatever still shares the paths of its objects makes the tracker copy
    /// them.
    void clear();

    bool isOf(Frame const& frame) const { return mFrame == &frame; }

    /// In the order of the frame's objects.
    std::vector<Sighting> const& sightings() const { return mSightings; }

    /// Null when the frame has no such object.
    Sighting const* find(uint32_t id) const;

    /// A copy of the frame without its images, as events keep it, with all of each object's path. Made at the first call.
    rktl::SmartPtr<Frame> const& copy();

private:
    Frame const* mFrame = nullptr;
    std::vector<Sighting> mSightings;
    rktl::SmartPtr<Frame> mCopy;
};
