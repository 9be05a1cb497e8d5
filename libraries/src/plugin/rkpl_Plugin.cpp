#include "plugin/rkpl_Plugin.h"

#include "misc/rk_portability.h"

namespace rkpl {

bool Plugin::isSameIdentifier(char const* a, char const* b)
{
    return a && rk_stricmp(a, b) == 0;
}

} // namespace rkpl
