#include "sync/rkst_ConstVault.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string>

namespace rkst {

rktl::Exception vaultInUse(char const* name, std::type_info const& type, int count)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const readable(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    std::string const text = std::string("~") + name + "<" + (readable ? readable.get() : type.name()) +
        "> - Not all locks released (" + std::to_string(count) + ") before deleting vault.";
    return rktl::Exception(text.c_str());
}

} // namespace rkst
