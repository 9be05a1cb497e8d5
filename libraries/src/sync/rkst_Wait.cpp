#include "sync/rkst_Wait.h"

#include "sync/rkst_Deadline.h"
#include "sync/rkst_ListWaiters.h"
#include "sync/rkst_Sleep.h"

#include <atomic>

namespace rkst {

void Wait(unsigned int milliseconds)
{
    Deadline const deadline(milliseconds);
    std::atomic<uint32_t> nobodyWakes = 0;
    while (deadline.remaining() > 0)
        sleepWhile(nobodyWakes, 0, deadline);
}

bool Wait(std::span<WaitObject* const> objects, unsigned int milliseconds, unsigned int& index)
{
    Deadline const deadline(milliseconds);
    ListWaiter waiter;
    bool toldOfAll = true;
    for (WaitObject* const object : objects)
        toldOfAll = (!object || object->watch(waiter.getPlace())) && toldOfAll;
    do {
        waiter.look();
        for (std::size_t i = 0; i < objects.size(); ++i) {
            if (objects[i] && objects[i]->wait(0)) {
                index = (unsigned int)i;
                return true;
            }
        }
        if (toldOfAll && deadline.remaining() > 0)
            waiter.sleep(deadline);
        else
            Wait(1);
    } while (deadline.remaining() > 0);
    return false;
}

} // namespace rkst
