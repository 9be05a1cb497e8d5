#pragma once

#include "BaseClasses/Frame.h"
#include "misc/rktl_SmartPtr.h"

/// A copy of the present frame that all who keep it share. It has no images: an event, which is where such copies go, keeps none.
/// Not thread-safe.
class SharedFrame {
public:
    /// The copy of this frame, which is made when it is another one than at the last call.
    rktl::SmartPtr<Frame> const& of(Frame const& frame);

private:
    rktl::SmartPtr<Frame> mFrame;
};
