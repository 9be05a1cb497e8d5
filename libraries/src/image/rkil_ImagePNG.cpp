#include "image/rkil_ImagePNG.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"

namespace rkil {

rktl::String ImagePNG::getTypeName() const
{
    return "rkil_ImagePNG";
}

rktl::String ImagePNG::toXML(char const*) const
{
    throw rktl::Exception("rkil::ImagePNG::toXML() - not implemented.");
}

bool ImagePNG::fromXML(char const*)
{
    throw rktl::Exception("rkil::ImagePNG::fromXML() - not implemented.");
}

} // namespace rkil
