#include "BaseClasses/CameraMap.h"
#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// Any bytes as a camera map on the wire: refused, or what is read is written as bytes that can be read again. Not as the same
/// ones: XML does not keep every blank.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    CameraMap read;
    try {
        if (read.fromBin(data, static_cast<unsigned int>(size)) > size)
            std::abort();
    } catch (rktl::Exception const&) {
        return 0;
    }
    std::vector<unsigned char> bytes(read.getBinLength());
    if (read.toBin(bytes.data()) != bytes.size())
        std::abort();
    CameraMap again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size())
        std::abort();
    return 0;
}
