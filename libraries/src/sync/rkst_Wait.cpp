#include "sync/rkst_Wait.h"

#include "sync/rkst_Deadline.h"

#include <chrono>
#include <thread>

namespace rkst {

void Wait(unsigned int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
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
