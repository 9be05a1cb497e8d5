#include "misc/rktl_url.h"

#include <cstdlib>

/// Any text as an address. What was read as its query comes back from the query's text, and escapes undo themselves.
extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    rktl::String const text(reinterpret_cast<char const*>(data), size);
    rktl::url const address(text);
    rktl::url const wholeAgain((rktl::String(address))); // whatever that is, it is read without a fault
    rktl::url const again(rktl::String("s:?" + address.query()));
    if (again.mQuery != address.mQuery)
        std::abort();
    if (rktl::url::decode(rktl::url::encode(text, "@:/?=&+"), false) != text)
        std::abort();
    return 0;
}
