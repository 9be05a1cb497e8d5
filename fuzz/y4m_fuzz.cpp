// Y4M streams: any bytes either give whole pictures or a SourceError.
#include "camera/sources/Y4mSource.h"

#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    try {
        camera::Y4mSource source(std::make_unique<std::istringstream>(std::string(data, data + size)), "fuzz");
        camera::Picture picture;
        while (source.advance())
            source.picture(picture);
    } catch (camera::SourceError const&) {
    }
    return 0;
}
