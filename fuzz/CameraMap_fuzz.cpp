#include "BaseClasses/CameraMap.h"
#include "support/record_round_trip.h"

/// The two writings may differ: the wire carries XML, which does not keep every blank.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::vector<unsigned char> first, second;
    recordRoundTrip<CameraMap>(data, size, first, second);
    return 0;
}
