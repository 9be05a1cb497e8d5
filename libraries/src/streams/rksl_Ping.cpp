#include "streams/rksl_Ping.h"

#include "misc/rktl_String.h"

namespace rksl {

rktl::String Ping::getTypeName() const
{
    return "rksl_Ping";
}

void Ping::fillSerializable(MemberList& list, NamedMembers& named)
{
    list = {&timestamp};
    named = {{"timestamp", &timestamp}};
}

} // namespace rksl
