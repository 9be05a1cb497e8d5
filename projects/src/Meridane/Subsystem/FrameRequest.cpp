#include "Meridane/Subsystem/FrameRequest.h"

rktl::String FrameRequest::getTypeName() const
{
    return "FrameRequest";
}

void FrameRequest::fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named)
{
    list = {&tracks, &fps, &imageTypes, &resolution};
    named = {{"tracks", &tracks}, {"fps", &fps}, {"image-types", &imageTypes}, {"resolution", &resolution}};
}
