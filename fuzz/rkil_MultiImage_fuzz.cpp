#include "image/rkil_MultiImage.h"
#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

/// Any bytes as a picture on the wire: refused, or it says how much it used and gives the same bytes again.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    rkil::MultiImage image;
    unsigned int used = 0;
    try {
        used = image.fromBin(data, static_cast<unsigned int>(size));
    } catch (rktl::Exception const&) {
        return 0;
    }
    if (used > size)
        std::abort();
    std::vector<unsigned char> bytes(image.getBinLength());
    if (image.toBin(bytes.data()) != bytes.size())
        std::abort();
    // A picture without pixels comes back with no size at all, a gray one under the code of colour with four channels.
    rkil::MultiImage again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size() ||
        again.getWidth() != image.getWidth() || again.getHeight() != image.getHeight())
        std::abort();
    return 0;
}
