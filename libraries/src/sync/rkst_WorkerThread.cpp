#include "sync/rkst_WorkerThread.h"

namespace rkst {

int WorkerThread::onEvent(unsigned char index)
{
    switch (index) {
    case 0:
        onNewEvent();
        return 1;
    case 1:
        onTimer();
        return 1;
    default:
        return 0;
    }
}

} // namespace rkst
