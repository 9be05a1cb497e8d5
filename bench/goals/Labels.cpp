#include "goals/Labels.h"

#include "detection/rk_conncomp.h"
#include "image/rk_vertex.h"

#include <cstring>
#include <random>
#include <vector>

namespace labels {

namespace {

constexpr int rounds = 60;

/// A two-valued picture and what labels it.
class Sheet {
public:
    explicit Sheet(uint32_t kernel = 5)
    {
        rk_init_image(&mImage, width, height, 1);
        rk_conncomp_init(64, &mConncomp);
        rk_init_kernel(&mKernel, kernel, kernel, rk_kernel_square);
    }
    ~Sheet()
    {
        rk_free_image(&mImage);
        rk_conncomp_deinit(&mConncomp);
        rk_free_kernel(&mKernel);
    }
    Sheet(Sheet const&) = delete;
    Sheet& operator=(Sheet const&) = delete;

    rk_image& image() { return mImage; }
    rk_conncomp const& conncomp() const { return mConncomp; }

    void label()
    {
        rk_vertex* regions = nullptr;
        uint32_t count = 0;
        rk_conncomp_process(&mImage, 255, &mConncomp, &mKernel, &regions, &count);
        rk_free_vertices(&regions);
    }

    Samples measure()
    {
        Samples samples;
        for (int round = 0; round < rounds; ++round)
            samples.push_back(seconds([this] { label(); }));
        return samples;
    }

private:
    rk_image mImage = {};
    rk_conncomp mConncomp = {};
    rk_kernel mKernel = {};
};

} // namespace

Samples copies()
{
    std::vector<unsigned char> from(width * height, 7), to(width * height);
    Samples samples;
    for (int round = 0; round < rounds; ++round)
        samples.push_back(seconds([&] { memcpy(to.data(), from.data(), to.size()); }));
    return samples;
}

Samples emptyFrame()
{
    return Sheet().measure();
}

Samples blobs()
{
    std::mt19937 random(11);
    Sheet sheet;
    uint32_t set = 0;
    while (set < width * height * 11 / 100) {
        uint32_t const columns = 8 + random() % 73, rows = 8 + random() % 73;
        uint32_t const left = random() % (width - columns), top = random() % (height - rows);
        for (uint32_t y = top; y < top + rows; ++y)
            for (uint32_t x = left; x < left + columns; ++x) {
                unsigned char& pixel = sheet.image().data[x + y * width];
                set += pixel == 0;
                pixel = 255;
            }
    }
    return sheet.measure();
}

Samples noise(uint32_t kernel)
{
    std::mt19937 random(25);
    Sheet sheet(kernel);
    for (uint32_t i = 0; i < sheet.image().size; ++i)
        sheet.image().data[i] = random() % 4 == 0 ? 255 : 0;
    return sheet.measure();
}

Cost specks(uint32_t count)
{
    Sheet sheet;
    uint32_t const columns = width / 6; // a gap of five pixels keeps them apart
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t const place = static_cast<uint32_t>(uint64_t(i) * (columns * (height / 6)) / count);
        sheet.image().data[place % columns * 6 + place / columns * 6 * width] = 255;
    }
    double const time = median(sheet.measure());
    rk_label_set const& set = sheet.conncomp().set;
    return {time, static_cast<double>(set.capacity) * (sizeof(rk_extent) + sizeof(uint32_t)) / static_cast<double>(count)};
}

} // namespace labels
