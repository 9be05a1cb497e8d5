#include "trackers/EventSpies/SharedFrame.h"

rktl::SmartPtr<Frame> const& SharedFrame::of(Frame const& frame)
{
    if (mFrame && *mFrame == frame)
        return mFrame;
    mFrame = rktl::SmartPtr<Frame>(new Frame);
    mFrame->setFromWithoutImages(frame);
    return mFrame;
}
