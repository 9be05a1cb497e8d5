#pragma once

#include "sync/rkst_WorkerThreadEx.h"

namespace rkst {

/// A worker with a slot for new work (index 0) and one for a timer (index 1). The rules of rkst::WorkerThreadEx hold.
class WorkerThread : public WorkerThreadEx<2> {
public:
    using WorkerThreadEx<2>::WorkerThreadEx;

protected:
    virtual void onNewEvent() { }
    virtual void onTimer() { }

    /// 1 for a slot that it handled, else 0.
    int onEvent(unsigned char index) override;
};

} // namespace rkst
