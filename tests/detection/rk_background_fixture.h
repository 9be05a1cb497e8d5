#pragma once

#include "detection/rk_background.h"
#include "detection/rk_distribution.h"
#include "image/rk_image.h"
#include "math/rk_bbox.h"

#include <algorithm>
#include <vector>

/// An image that frees itself.
struct ByteImage : rk_image {
    ByteImage(uint32_t w, uint32_t h, uint32_t c, uint8_t value = 0)
        : rk_image()
    {
        rk_init_image(this, w, h, c);
        std::fill_n(data, size, value);
    }
    ByteImage(uint32_t w, uint32_t h, uint32_t c, std::vector<uint8_t> const& bytes)
        : ByteImage(w, h, c)
    {
        for (size_t i = 0; i < size; ++i)
            data[i] = bytes[i % bytes.size()]; // a shorter list repeats
    }
    ~ByteImage() { rk_free_image(this); }
    ByteImage(ByteImage const&) = delete;
    ByteImage& operator=(ByteImage const&) = delete;

    std::vector<uint8_t> bytes() const { return std::vector<uint8_t>(data, data + size); }
};

/// A background model that frees itself.
struct BackgroundModel : rk_background {
    BackgroundModel(uint32_t w, uint32_t h, int32_t m)
        : rk_background()
    {
        rk_background_init(this, w, h, m);
    }
    ~BackgroundModel() { rk_background_deinit(this); }
    BackgroundModel(BackgroundModel const&) = delete;
    BackgroundModel& operator=(BackgroundModel const&) = delete;

    rk_distribution& at(size_t channel, size_t pixel)
    {
        rk_distribution* const channels[] = {channel0, channel1, channel2};
        return channels[channel][pixel];
    }

    /// Gives every pixel of a channel a learned state. inverse / 128 is the distance in tenths that one step makes.
    void setChannel(size_t channel, int32_t mean, int32_t inverse)
    {
        for (size_t i = 0; i < (size_t)width * height; ++i) {
            at(channel, i).mean = mean;
            at(channel, i).inverse_stdev = inverse;
            at(channel, i).unset = 0;
        }
        rk_bbox const all = {0, 0, width, height};
        rk_background_refresh_mirror(this, &all);
    }

    int learn(rk_image const& image)
    {
        std::vector<uint8_t> const all(image.width * image.height, 1);
        return rk_background_update(this, mode ? nullptr : &image, mode ? &image : nullptr, all.data());
    }
};

/// What a comparison gave.
struct Comparison {
    int result;
    uint32_t count;
    std::vector<uint8_t> foreground;

    Comparison(rk_background* model, rk_image const* image, rk_image const* mask = nullptr)
        : count(77)
    {
        ByteImage out(model->width, model->height, 1, 99); // whatever was there must not shine through
        result = rk_background_compare(model, image, mask, &out, &count);
        foreground = out.bytes();
    }
};
