#include "sync/rkst_Wait.h"

#include "sync/rkst_Deadline.h"
#include "sync/rkst_Sleep.h"

#include <atomic>

namespace rkst {

void Wait(unsigned int milliseconds)
{
    Deadline const deadline(milliseconds);
    std::atomic<uint32_t> nobodyWakes = 0;
    while (deadline.remaining() > 0)
        sleepWhileClear(nobodyWakes, deadline);
}

bool Wait(std::span<WaitObject* const> objects, unsigned int milliseconds, unsigned int& index)
{
    Deadline const deadline(milliseconds);
    do {
        for (std::size_t i = 0; i < objects.size(); ++i) {
            if (objects[i] && objects[i]->wait(0)) {
                index = (unsigned int)i;
                return true;
            }
        }
        Wait(1);
    } while (deadline.remaining() > 0);
    return false;
}

} // namespace rkst
