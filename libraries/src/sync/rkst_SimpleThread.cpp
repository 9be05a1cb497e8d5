#include "sync/rkst_SimpleThread.h"

namespace rkst {

void SimpleThread::process(int)
{
    process();
}

} // namespace rkst
