#include "Meridane/Subsystem/CameraCmd.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "Meridane/Subsystem/SummaryQuery.h"
#include "Meridane/Subsystem/TrackerCmd.h"
#include "misc/rktl_Exception.h"

#include <cstdlib>
#include <vector>

namespace {

/// What a server may ask of a record that it took over; each answers or throws.
template <class Ask> void ask(Ask question)
{
    try {
        question();
    } catch (rktl::Exception const&) {
    }
}

void askAll(rksl::Command const& record)
{
    CameraCmd camera(record);
    rksl::StringMap<CameraParams> map;
    rksl::StringMap<rktl::String> attributes;
    SummaryQuery query;
    ask([&] { ConnectionCmd(record).getFrameRequest(); });
    ask([&] { TrackerCmd(record).getObjectID(); });
    ask([&] { camera.getParams(); });
    ask([&] { camera.getBoolean(); });
    ask([&] { camera.getCameraMap(map); });
    ask([&] { camera.getQuery(query); });
    ask([&] { camera.getPTZCmd().getPreset(); });
    ask([&] { camera.getCommandDescription(); });
    ask([&] { camera.setRevision(rktl::TimeStamp(1, 0, true)); });
    camera.getCommandAttributes(attributes);
    camera.getCommandString();
}

} // namespace

/// A command off the wire, taken over as each family. What can be written is read again as the same bytes.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
try {
    rksl::Command read;
    if (read.fromBin(data, static_cast<unsigned int>(size)) > size)
        std::abort();
    std::vector<unsigned char> first(read.getBinLength());
    bool const complete = [&] {
        try {
            return read.toBin(first.data()) == first.size();
        } catch (rktl::Exception const&) {
            return false;
        }
    }();
    if (complete) {
        rksl::Command again;
        if (again.fromBin(first.data(), static_cast<unsigned int>(first.size())) != first.size())
            std::abort();
        std::vector<unsigned char> second(again.getBinLength());
        again.toBin(second.data());
        if (first != second)
            std::abort();
    }
    askAll(read);
    return 0;
} catch (rktl::Exception const&) {
    return 0;
}
