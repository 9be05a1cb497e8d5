#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// The first byte is the length of the format, the format follows, the text is the rest. Whatever is read has to be printed
/// the way that it stood there.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size == 0)
        return 0;
    char const* const bytes = reinterpret_cast<char const*>(data);
    size_t const length = std::min<size_t>(data[0], size - 1);
    rktl::String const format(bytes + 1, length);
    rktl::String const text(bytes + 1 + length, size - 1 - length);

    rktl::TimeStamp const stamp = rktl::TimeStamp::fromString(text, format);
    if (stamp.isSet() && format != "ISO8601" && !text.hasPrefix(stamp.toString(format)))
        std::abort();
    rktl::TimeStamp::fromISOString(text).toISOString();
    return 0;
}
