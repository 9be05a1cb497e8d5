#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_IntMap.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

/// What a reader takes it gives back: the written form reads as an equal object, and no more than the input was consumed.
template <class Record> void roundTrip(uint8_t const* data, unsigned int size)
{
    Record record;
    try {
        if (record.fromBin(data, size) > size)
            std::abort();
    } catch (rktl::Exception const&) {
        return;
    }
    std::vector<unsigned char> bytes(record.getBinLength());
    if (record.toBin(bytes.data()) != bytes.size())
        std::abort();
    Record again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size() || again != record)
        std::abort();
}

} // namespace

/// The first byte chooses the container, the rest is its body.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0)
        return 0;
    using Reader = void (*)(uint8_t const*, unsigned int);
    static Reader const readers[] = {
        roundTrip<rksl::List<rktl::Integer>>,
        roundTrip<rksl::List<rktl::String>>,
        roundTrip<rksl::List<rksl::List<rktl::String>>>,
        roundTrip<rksl::Set<rktl::String>>,
        roundTrip<rksl::StringMap<rktl::String>>,
        roundTrip<rksl::IntMap<rksl::Set<rktl::Integer>>>,
    };
    readers[data[0] % std::size(readers)](data + 1, static_cast<unsigned int>(size - 1));
    return 0;
}
