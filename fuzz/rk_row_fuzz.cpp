#include "detection/rk_conncomp.h"
#include "detection/rk_detection.h"
#include "image/rk_image.h"
#include "image/rk_morphology.h"
#include "image/rk_row.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Any small picture: what its morphology, its components and its motion give must not depend on the form of the pixel loops.

namespace {

struct Picture : rk_image {
    Picture(uint32_t columns, uint32_t rows)
        : rk_image()
    {
        rk_init_image(this, columns, rows, 1);
    }
    ~Picture() { rk_free_image(this); }
};

std::string describe(uint8_t const* pixels, uint32_t width, uint32_t height, uint8_t kernelSize, uint8_t order)
{
    Picture image(width, height), scratch(width, height);
    memcpy(image.data, pixels, image.size);
    rk_morphology_step steps[2];
    for (int i = 0; i < 2; ++i)
        steps[i] = order >> i & 1 ? rk_step_erode : rk_step_dilate;
    int const done = rk_morphology(&image, &scratch, steps, order >> 2 & 3 ? 2 : 0);
    std::string text = std::to_string(done) + std::string(reinterpret_cast<char const*>(image.data), image.size);

    rk_conncomp conncomp;
    rk_kernel kernel;
    if (!rk_conncomp_init(8, &conncomp) || !rk_init_kernel(&kernel, 1 + kernelSize % 15, 1 + kernelSize / 16, kernelSize % 2))
        std::abort();
    rk_vertex* vertices = nullptr;
    uint32_t count = 0;
    text += std::to_string(rk_conncomp_process(&image, 200, &conncomp, &kernel, &vertices, &count));
    for (rk_vertex const* vertex = vertices; vertex; vertex = vertex->next)
        for (uint32_t const number : {vertex->x, vertex->y, vertex->width, vertex->height})
            text += ' ' + std::to_string(number);
    rk_free_vertices(&vertices);
    rk_free_kernel(&kernel);
    rk_conncomp_deinit(&conncomp);
    return text;
}

/// What the motion detector makes of a picture that comes and goes by the bits of the pattern, for longer than masks are kept.
std::string detect(uint8_t const* pixels, uint32_t width, uint32_t height, uint8_t pattern, decltype(rk_process)& process)
{
    rk_detection detection = {};
    if (!rk_detection_init(0.9f, 3, 3, 0, 3, &detection))
        std::abort();
    Picture frame(width, height), scratch(width, height), result(width, height);
    std::string text;
    for (uint32_t i = 0; i < 32; ++i) {
        if (pattern >> i % 8 & 1)
            memcpy(frame.data, pixels, frame.size);
        else
            memset(frame.data, 100, frame.size);
        text += std::to_string(process(&frame, &scratch, &result, &detection));
        text.append(reinterpret_cast<char const*>(result.data), result.size);
    }
    rk_detection_deinit(&detection);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    if (size < 4)
        return 0;
    uint32_t const width = 1 + data[0];
    uint32_t const height = static_cast<uint32_t>((size - 3) / width);
    if (height == 0)
        return 0;
    std::string want;
    for (rk_row_kernels const* const* form = rk_row_forms(); *form; ++form) {
        rk_row_use((*form)->name);
        std::string const motion = detect(data + 3, width, height, data[2], rk_process);
        if (motion != detect(data + 3, width, height, data[2], rk_process_motion))
            std::abort();
        std::string const text = describe(data + 3, width, height, data[1], data[2]) + motion;
        if (form == rk_row_forms())
            want = text;
        else if (text != want)
            std::abort();
    }
    return 0;
}
