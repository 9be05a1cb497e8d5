#pragma once

#include "sync/rkst_BasicThread.h"

namespace rkst {

/// A thread whose work takes no argument. The rules of rkst::BasicThread hold.
class SimpleThread : public BasicThread<0> {
public:
    void process(int argument) override;

    /// The work; looks at mStopEvent.
    virtual void process() = 0;
};

} // namespace rkst
