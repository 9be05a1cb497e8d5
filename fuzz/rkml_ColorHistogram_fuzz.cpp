#include "math/rkml_ColorHistogram.h"
#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

bool equal(rkml::Histogram const& a, rkml::Histogram const& b)
{
    if (a.getBinCount() != b.getBinCount() || a.getTotal() != b.getTotal())
        return false;
    for (uint32_t bin = 0; bin < a.getBinCount(); ++bin)
        if (a.getBinValue(bin) != b.getBinValue(bin))
            return false;
    return true;
}

/// What a reader takes it gives back, and no more than the input was consumed.
template <class Record> Record roundTrip(uint8_t const* data, unsigned int size)
{
    Record record;
    if (record.fromBin(data, size) > size)
        std::abort();
    std::vector<unsigned char> bytes(record.getBinLength());
    if (record.toBin(bytes.data()) != bytes.size())
        std::abort();
    Record again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size() || !equal(again, record))
        std::abort();
    return record;
}

} // namespace

/// The first byte chooses the kind of histogram, the rest is its body.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0)
        return 0;
    try {
        if (data[0] % 2 == 0) {
            roundTrip<rkml::Histogram>(data + 1, static_cast<unsigned int>(size - 1));
            return 0;
        }
        rkml::ColorHistogram colours = roundTrip<rkml::ColorHistogram>(data + 1, static_cast<unsigned int>(size - 1));
        colours.addColor(data[0], data[size - 1], 255, 1); // its bits and its bins agree
        uint32_t packed = 0;
        colours.binToColor(colours.getMaxBin(), packed);
    } catch (rktl::Exception const&) {
    }
    return 0;
}
