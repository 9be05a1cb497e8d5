#include "streams/rksl_EndOfFile.h"

#include "misc/rktl_String.h"

namespace rksl {

rktl::String EndOfFile::getTypeName() const
{
    return "rksl_EndOfFile";
}

rktl::String EndOfFile::toXML(char const* tag) const
{
    return tag ? "<" + std::string(tag) + "/>" : std::string();
}

bool EndOfFile::fromXML(char const*)
{
    return true;
}

unsigned int EndOfFile::toBin(unsigned char*) const
{
    return 0;
}

unsigned int EndOfFile::fromBin(unsigned char const*, unsigned int)
{
    return 0;
}

} // namespace rksl
