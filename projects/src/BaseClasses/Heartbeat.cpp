#include "BaseClasses/Heartbeat.h"

rktl::String Heartbeat::getTypeName() const
{
    return "Heartbeat";
}

void Heartbeat::fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named)
{
    list = {&timestamp, &version, &mAttributes.change()};
    named = {{"timestamp", &timestamp}, {"version", &version}, {"attributes", &mAttributes.change()}};
}
