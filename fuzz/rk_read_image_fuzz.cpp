#include "image/rk_image.h"
#include "image/rk_image_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

/// Any bytes as an image's text file: read or refused, and what is read is no larger than the numbers that stand in it.
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    int const file = memfd_create("image", 0);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size))
        std::abort();
    std::string const path = "/proc/self/fd/" + std::to_string(file);
    rk_image image = {};
    if (rk_read_image(&image, path.c_str()) && (image.size > 2 * size || (image.size != 0) != (image.data != nullptr)))
        std::abort();
    rk_free_image(&image);
    close(file);
    return 0;
}
