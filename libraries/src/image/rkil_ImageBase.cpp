#include "image/rkil_ImageBase.h"

namespace rkil {

bool ImageBase::checkResolution(ImageBase const& other) const
{
    return getWidth() == other.getWidth() && getHeight() == other.getHeight();
}

} // namespace rkil
