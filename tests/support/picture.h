#pragma once

#include "image/rk_image.h"

#include <string>
#include <vector>

namespace test {

/// A one-channel image drawn as text: '#' is 255, everything else 0. Freed at the end.
class Picture {
public:
    explicit Picture(std::vector<std::string> const& rows)
    {
        rk_init_image(&mImage, static_cast<uint32_t>(rows.front().size()), static_cast<uint32_t>(rows.size()), 1);
        unsigned char* pixel = mImage.data;
        for (std::string const& row : rows)
            for (char const c : row)
                *pixel++ = c == '#' ? 255 : 0;
    }
    ~Picture() { rk_free_image(&mImage); }
    Picture(Picture const&) = delete;
    Picture& operator=(Picture const&) = delete;

    rk_image& image() { return mImage; }
    rk_image const& image() const { return mImage; }

private:
    rk_image mImage;
};

/// The rows of a one-channel image, drawn as above: '#' for any value that is not 0.
inline std::vector<std::string> rowsOf(rk_image const& image)
{
    std::vector<std::string> rows;
    for (uint32_t y = 0; y < image.height; ++y) {
        rows.emplace_back();
        for (uint32_t x = 0; x < image.width; ++x)
            rows.back() += image.data[y * image.width + x] ? '#' : '.';
    }
    return rows;
}

} // namespace test
