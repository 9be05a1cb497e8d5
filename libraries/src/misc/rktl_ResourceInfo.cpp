#include "misc/rktl_ResourceInfo.h"

namespace rktl {

unsigned int ResourceInfo::getTypeId() const
{
    return 814;
}

String ResourceInfo::getTypeName() const
{
    return "rktl_ResourceInfo";
}

void ResourceInfo::fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named)
{
    list = {&mFriendlyName, &mURL, &mAttributes.change()};
    named = {{"friendly-name", &mFriendlyName}, {"url", &mURL}, {"attributes", &mAttributes.change()}};
}

char const* ResourceInfo::getClassName() const
{
    return "rktl::ResourceInfo";
}

} // namespace rktl
