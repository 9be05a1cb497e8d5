#include "streams/rksl_ElementContainer.h"

#include "misc/rktl_Integer.h"

namespace rksl {

void writeElementHead(MemIOStream& stream, unsigned int elementTypeId, size_t elementCount)
{
    stream.write(rktl::Integer(static_cast<int32_t>(elementTypeId)));
    stream.write(rktl::Integer(static_cast<int32_t>(elementCount)));
}

int32_t readElementNumber(MemIOStream& stream)
{
    rktl::Integer number;
    stream.read(number);
    return number.value;
}

} // namespace rksl
