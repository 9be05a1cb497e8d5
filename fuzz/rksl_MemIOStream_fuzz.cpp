#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_MemIOStream.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

template <class Action> void refusable(Action action)
{
    try {
        action();
    } catch (rktl::Exception const&) {
    }
}

} // namespace

/// Any bytes as frames: the stream, valid or not, may refuse but never reads past them, and walks no further than their end.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    rksl::MemIOStream stream;
    refusable([&] { stream.setBuffer(data, static_cast<unsigned int>(size)); });
    bool const valid = stream.validate();
    unsigned int const frames = stream.count();

    rktl::String text;
    rktl::Integer number;
    rksl::MemIOStream inner;
    refusable([&] { stream.checkTypes(3, &text, nullptr, &inner); });
    refusable([&] { stream.peek(3, nullptr, &number, &text); });
    for (unsigned int i = 0; i < frames; ++i) {
        refusable([&] { stream.peek(text); });
        refusable([&] { stream.peek(number); });
        refusable([&] { stream.peek(inner); });
        stream.skip(); // each counted frame is whole: a throw here is a fault
    }
    if (valid != stream.isEmpty())
        std::abort();

    refusable([&] { inner.fromBin(data, static_cast<unsigned int>(size)); });
    return 0;
}
