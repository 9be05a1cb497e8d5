#include "BaseClasses/ObjectMap.h"
#include "BaseClasses/ObjectTrackerParams.h"
#include "misc/rktl_Exception.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

/// What is read can be written and read again, and gives the same bytes; no more than the input was consumed.
template <class Record> void roundTrip(Record& record, uint8_t const* data, unsigned int size)
{
    if (record.fromBin(data, size) > size)
        std::abort();
    std::vector<unsigned char> bytes(record.getBinLength());
    if (record.toBin(bytes.data()) != bytes.size())
        std::abort();
    Record again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size())
        std::abort();
}

void use(Object& object)
{
    Object other;
    other.update(object);
    other.setAverageVel(object.getFirstBox());
    other.scale(1.5);
    other.getClassConfidence("human,vehicle");
    other.getMergeListSize();
    other.age();
    other.clearTail();
}

} // namespace

/// The first byte chooses: one object, a map of them, or the tracker's parameters in binary or in XML form.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0)
        return 0;
    unsigned int const length = static_cast<unsigned int>(size - 1);
    try {
        if (data[0] % 4 == 0) {
            Object object;
            roundTrip(object, data + 1, length);
            use(object);
        } else if (data[0] % 4 == 1) {
            ObjectMap map;
            roundTrip(map, data + 1, length);
            map.removeDuplicates(0.5);
            ObjectMap follower;
            follower.update(map, rktl::ElapsedTime(15000));
        } else if (data[0] % 4 == 2) {
            ObjectTrackerParams params;
            roundTrip(params, data + 1, length);
        } else {
            ObjectTrackerParams params;
            params.xmlUnserialize(rktl::String(std::string(reinterpret_cast<char const*>(data + 1), length)));
            params.binUnserialize(params.binSerialize());
        }
    } catch (rktl::Exception const&) {
    }
    return 0;
}
