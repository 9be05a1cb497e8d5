#include "support/forms.h"

#include "detection/rk_background_fixture.h"
#include "detection/rk_detection.h"
#include "image/rk_morphology.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

// Whole operations in each form: what they give and what they leave behind must not tell which form ran.

namespace {

using Bytes = std::vector<uint8_t>;

struct Size {
    uint32_t width, height;
};
constexpr Size sizes[] = {{4, 4}, {5, 7}, {31, 9}, {64, 12}, {65, 5}, {130, 33}, {300, 9}};

void append(Bytes& bytes, void const* data, size_t size)
{
    uint8_t const* const from = static_cast<uint8_t const*>(data);
    bytes.insert(bytes.end(), from, from + size);
}

/// A textured scene with noise, on which a bright or a dark box moves.
void draw(rk_image& image, uint32_t n, std::mt19937& random)
{
    for (uint32_t y = 0; y < image.height; ++y)
        for (uint32_t x = 0; x < image.width; ++x)
            for (uint32_t channel = 0; channel < image.channels; ++channel) {
                bool const isBox = (x + 3 * n) % image.width < image.width / 3 && y > image.height / 4;
                uint32_t const value = isBox ? (n % 9 ? 230 : 4) + random() % 9 : 90 + (x * 7 + y * 3) % 40 + random() % 24;
                image.data[image.channels * (x + y * image.width) + channel] = static_cast<uint8_t>(value);
            }
}

/// Everything that a sequence of frames leaves in the detector, its result and, with rk_process, its scratch.
Bytes runDetector(Size size, uint32_t channels, decltype(rk_process)* process)
{
    std::mt19937 random(size.width);
    rk_detection detection;
    EXPECT_TRUE(rk_detection_init(0.7f, 5, 5, rk_kernel_square, 3, &detection));
    ByteImage frame(size.width, size.height, channels), scratch(size.width, size.height, 1, 11), result(1, 1, 1);
    Bytes all;
    for (uint32_t n = 0; n < 60; ++n) {
        draw(frame, std::min(n, 12u) + std::max(n, 50u), random); // nothing moves between
        bool const isDisturbed = size.width % 2;
        if (isDisturbed && n == 7)
            rk_set_imageq_len(2, &detection); // the sum of the masks that go stays
        if (isDisturbed && (n == 13 || n == 22))
            rk_set_skip_imageq_len(1, &detection); // the sum starts from 0 while masks wait to be taken from it
        if (process == rk_process)
            memset(result.data, 33, result.size); // nothing to rely on
        EXPECT_TRUE((n % 20 ? process : rk_process)(&frame, &scratch, &result, &detection));
        if (process != rk_process)
            memset(scratch.data, 11, scratch.size);
        for (rk_image const* image : {static_cast<rk_image const*>(&scratch), static_cast<rk_image const*>(&result),
                 const_cast<rk_image const*>(&detection.motion), const_cast<rk_image const*>(&detection.accumulator),
                 const_cast<rk_image const*>(detection.previous), const_cast<rk_image const*>(detection.spare_difference)})
            if (image)
                append(all, image->data, image->size);
    }
    rk_detection_deinit(&detection);
    return all;
}

/// All foregrounds and, at the end, all words of the model. Regions are forgotten, weights change, words are written by hand.
Bytes runModel(Size size, int32_t mode)
{
    std::mt19937 random(size.height);
    BackgroundModel model(size.width, size.height, mode);
    ByteImage frame(size.width, size.height, mode ? 4 : 1), mask(size.width, size.height, 1),
        foreground(size.width, size.height, 1, 7);
    Bytes all;
    for (uint32_t n = 0; n < 60; ++n) {
        draw(frame, n, random);
        for (uint32_t i = 0; i < mask.size; ++i)
            mask.data[i] = n % 5 == 0 ? 255 : random() % 4;
        uint32_t count = 0;
        EXPECT_TRUE(rk_background_compare(&model, &frame, n % 2 ? &mask : nullptr, &foreground, &count));
        append(all, foreground.data, foreground.size);
        append(all, &count, sizeof count);
        EXPECT_TRUE(rk_background_update(&model, mode ? nullptr : &frame, mode ? &frame : nullptr, mask.data));
        rk_bbox const corner = {1, 1, 2, 3};
        if (n == 20)
            rk_background_reset_region(&model, &corner);
        if (n == 30)
            rk_background_set_weight(&model, 1.0f);
        if (n == 40) {
            model.channel0[5].mean = 17;
            model.channel0[6].inverse_stdev = 1280; // does not fit a byte
            rk_background_refresh_mirror(&model, &corner);
            rk_bbox const whole = {0, 0, model.width, model.height};
            rk_background_refresh_mirror(&model, &whole);
        }
    }
    for (rk_distribution const* channel : {model.channel0, model.channel1, model.channel2})
        if (channel)
            append(all, channel, sizeof *channel * size.width * size.height);
    return all;
}

Bytes runMorphology(Size size, bool isTwoValued)
{
    std::mt19937 random(size.width + size.height);
    Bytes all;
    for (uint32_t percent : {5, 50, 95})
        for (uint32_t order = 0; order < 16; ++order) {
            ByteImage image(size.width, size.height, 1);
            Bytes bytes(image.size + 1, 9); // a scratch that is a view may begin at any byte
            rk_image scratch = {bytes.data() + order % 2, size.width, size.height, 1, image.size};
            for (uint32_t i = 0; i < image.size; ++i)
                image.data[i] = random() % 100 < percent ? 255 : isTwoValued ? 0 : static_cast<uint8_t>(random());
            rk_morphology_step steps[4];
            for (uint32_t i = 0; i < 4; ++i)
                steps[i] = order >> i & 1 ? rk_step_erode : rk_step_dilate;
            EXPECT_EQ(4, rk_morphology(&image, &scratch, steps, 4));
            append(all, image.data, image.size);
        }
    return all;
}

template <class Run> void expectOneResult(char const* what, Run run)
{
    for (Size const size : sizes) {
        std::vector<Bytes> results;
        test::withEachForm([&] { results.push_back(run(size)); });
        for (size_t form = 1; form < results.size(); ++form)
            EXPECT_TRUE(results[0] == results[form])
                << what << ", " << rk_row_forms()[form]->name << ", " << size.width << "x" << size.height;
    }
}

} // namespace

TEST(Forms, WholeOperationsLeaveTheSameBytes)
{
    for (auto* const process : {rk_process, rk_process_motion})
        for (uint32_t channels : {1u, 4u})
            expectOneResult("detector", [=](Size size) { return runDetector(size, channels, process); });
    expectOneResult("model, gray", [](Size size) { return runModel(size, 0); });
    expectOneResult("model, colour", [](Size size) { return runModel(size, 1); });
    expectOneResult("model, Lab", [](Size size) { return runModel(size, 2); });
    expectOneResult("morphology of two values", [](Size size) { return runMorphology(size, true); });
    expectOneResult("morphology of any bytes", [](Size size) { return runMorphology(size, false); });
}
