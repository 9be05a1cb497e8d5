#include "BaseClasses/Event.h"
#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// Any bytes as an event on the wire: refused, or what is read is written as bytes that read as the same again.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    Event read;
    try {
        if (read.fromBin(data, static_cast<unsigned int>(size)) > size)
            std::abort();
    } catch (rktl::Exception const&) {
        return 0;
    }
    std::vector<unsigned char> bytes(read.getBinLength());
    if (read.toBin(bytes.data()) != bytes.size())
        std::abort();
    Event again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size())
        std::abort();
    std::vector<unsigned char> same(again.getBinLength());
    if (again.toBin(same.data()) != same.size() || same != bytes)
        std::abort();
    return 0;
}
