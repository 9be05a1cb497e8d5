#include "misc/rktl_Exception.h"
#include "streams/rksl_MemIOStream.h"
#include "trackers/EventSpies/EventSpy.h"
#include "trackers/EventSpies/EventSpyFactory.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::vector<unsigned char> bytesOf(EventSpyFactory const& factory)
{
    std::vector<unsigned char> bytes(factory.getBinLength());
    if (factory.toBin(bytes.data()) != bytes.size())
        std::abort();
    return bytes;
}

/// A spy that was read can be written, and what is written reads as the same spy. Only a heading may have come with more than the
/// six decimals that are written, and so differ by a degree in the other form.
void roundTrip(EventSpyFactory const& factory)
{
    std::vector<unsigned char> const bytes = bytesOf(factory);
    EventSpyFactory again;
    if (again.fromBin(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size() || bytesOf(again) != bytes)
        std::abort();
    if (again.toXML() != factory.toXML() && factory.getSpy()->getTypeName() != "DirectionSpy")
        std::abort();
}

void readXml(std::string const& text)
{
    EventSpyFactory factory;
    if (!factory.fromXML(text.c_str()))
        return;
    factory.toXML();
    bytesOf(factory);
}

} // namespace

/// The first byte chooses the form, binary or XML; the rest is its body.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0)
        return 0;
    if (data[0] == 'x') {
        readXml(std::string(reinterpret_cast<char const*>(data + 1), size - 1));
        return 0;
    }
    try {
        EventSpyFactory factory;
        if (factory.fromBin(data + 1, static_cast<unsigned int>(size - 1)) > size - 1)
            std::abort();
        roundTrip(factory);
    } catch (rktl::Exception const&) {
    }
    return 0;
}
