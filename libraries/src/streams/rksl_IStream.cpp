#include "streams/rksl_IStream.h"

#include "streams/rksl_EndOfFile.h"

#include <chrono>
#include <thread>

namespace rksl {

bool IStream::wait(unsigned int ms) const
{
    constexpr unsigned int noLimit = 0xFFFFFFFF;
    auto const start = std::chrono::steady_clock::now();
    while (isEmpty()) {
        if (ms != noLimit && std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(ms))
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

bool IStream::isEOF() const
{
    return !isEmpty() && getNextType() == EndOfFile::typeId;
}

} // namespace rksl
