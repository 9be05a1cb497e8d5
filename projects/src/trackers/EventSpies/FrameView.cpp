#include "trackers/EventSpies/FrameView.h"

#include <algorithm>

void FrameView::show(Frame const& frame)
{
    clear();
    mFrame = &frame;
    for (auto const& [id, object] : frame.getObjects())
        mSightings.emplace_back(static_cast<uint32_t>(id.value), object);
}

void FrameView::clear()
{
    mFrame = nullptr;
    mCopy = {};
    mSightings.clear();
}

/// Ids are ordered as the frame's objects are: as signed numbers.
Sighting const* FrameView::find(uint32_t id) const
{
    auto const found = std::lower_bound(mSightings.begin(), mSightings.end(), id,
        [](Sighting const& seen, uint32_t wanted) { return static_cast<int32_t>(seen.id) < static_cast<int32_t>(wanted); });
    return found != mSightings.end() && found->id == id ? &*found : nullptr;
}

rktl::SmartPtr<Frame> const& FrameView::copy()
{
    if (!mCopy) {
        mCopy = rktl::SmartPtr<Frame>(new Frame);
        mCopy->setFromWithoutImages(*mFrame);
        mCopy->setFullTracks();
    }
    return mCopy;
}
