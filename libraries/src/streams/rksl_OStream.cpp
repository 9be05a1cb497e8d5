#include "streams/rksl_OStream.h"

#include "streams/rksl_IStream.h"

namespace rksl {

bool OStream::getNextObject(IStream& source, unsigned char*& data, unsigned int& length)
{
    return source.readNextObject(data, length);
}

} // namespace rksl
