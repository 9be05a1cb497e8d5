#include "detection/rk_background.h"

#include "detection/rk_distribution.h"
#include "image/rk_image.h"

#include <algorithm>
#include <cstdlib>

// The comparison in Lab runs in two passes. The first looks at lightness alone and finds how disturbed the whole frame
// is (a change of light, a camera that is adjusting). The second weighs lightness against chroma accordingly, passes over
// shadows, and tells the chroma channels how much noise to expect.

namespace {

struct Disturbance {
    uint32_t level;
    uint32_t chroma_min_stdev;
    float lightness_weight;
    float chroma_weight;
};

/// ratio: share of strongly differing pixels. average: mean strength of those that differ at all.
Disturbance disturbance_of(float ratio, float average)
{
    if ((ratio >= 0.7f && average >= 153.0f) || (ratio >= 0.5f && average >= 191.0f))
        return {2, 20, 0.1f, 0.9f};
    if (ratio >= 0.2f && average >= 114.0f)
        return {1, 10, 0.2f, 0.8f};
    return {0, 5, 0.2f, 0.8f};
}

/// First pass: leaves the membership of the lightness in foreground.
Disturbance compare_lightness(rk_background const* background, rk_image const* image, uint8_t const* mask, rk_image* foreground)
{
    constexpr uint32_t strong_above = 63;
    uint64_t sum = 0;
    uint32_t differing = 0;
    uint32_t strong = 0;
    for (size_t i = 0; i < foreground->size; ++i) {
        if (mask && !mask[i])
            continue;
        uint8_t const membership = rk_distribution_membership(&background->channel0[i], image->data[4 * i]);
        foreground->data[i] = membership;
        uint32_t const strength = 255u - membership;
        sum += strength;
        differing += strength != 0;
        strong += strength > strong_above;
    }
    float const average = differing ? (float)sum / (float)differing : 0.0f;
    float const ratio = foreground->size ? (float)strong / (float)foreground->size : 0.0f;
    return disturbance_of(ratio, average);
}

/// A shadow is moderately darker than the model, with nearly the same chroma, and is not of a neutral colour.
bool is_shadow(uint8_t const* lab, int32_t mean_l, int32_t mean_a, int32_t mean_b)
{
    float const lightness = lab[0];
    if (!(lightness > 135.0f && lightness < 231.98f))
        return false;
    float const ratio = lightness / std::max((float)mean_l, 1.0f);
    if (!(ratio > 0.35f && ratio < 0.99f))
        return false;
    float const chroma_distance = rk_background_square((float)(lab[1] - mean_a)) + rk_background_square((float)(lab[2] - mean_b));
    if (!(chroma_distance < -68.333336f * ratio + 73.916664f))
        return false;
    bool const neutral = std::abs(lab[1] - 127) < 11 && std::abs(lab[2] - 127) < 11;
    return !neutral;
}

/// Foreground strength of a pixel that is neither background nor shadow.
uint8_t strength_of(uint8_t lightness, uint8_t chroma, Disturbance const& disturbance)
{
    float const membership = (float)chroma * disturbance.chroma_weight + (float)lightness * disturbance.lightness_weight;
    return (uint8_t)(255.0f - membership);
}

void expect_chroma_noise(rk_background* background, size_t pixel, Disturbance const& disturbance)
{
    constexpr uint32_t dark_or_glaring_stdev = 10; // there the chroma is less certain
    int32_t const mean = background->channel0[pixel].mean;
    bool const well_lit = mean >= 115 && mean <= 236;
    uint32_t const stdev = disturbance.level > 0 || well_lit ? disturbance.chroma_min_stdev : dark_or_glaring_stdev;
    rk_distribution_set_min_stdev(&background->channel1[pixel], stdev);
    rk_distribution_set_min_stdev(&background->channel2[pixel], stdev);
}

} // namespace

int rk_background_compare_lab(
    rk_background* background, rk_image const* image, rk_image const* mask, rk_image* foreground, uint32_t* count)
{
    uint8_t const* const mask_bytes = mask ? mask->data : nullptr;
    Disturbance const disturbance = compare_lightness(background, image, mask_bytes, foreground);
    *count = 0;
    for (size_t i = 0; i < foreground->size; ++i) {
        uint8_t const lightness = foreground->data[i];
        foreground->data[i] = 0;
        if (mask_bytes && !mask_bytes[i])
            continue;
        expect_chroma_noise(background, i, disturbance);

        rk_distribution const& a = background->channel1[i];
        rk_distribution const& b = background->channel2[i];
        uint8_t const* const lab = image->data + 4 * i;
        uint8_t const chroma = std::min(rk_distribution_membership(&b, lab[2]), rk_distribution_membership(&a, lab[1]));
        bool const background_pixel = lightness == 255 && chroma == 255;
        if (background_pixel || is_shadow(lab, background->channel0[i].mean, a.mean, b.mean))
            continue;
        foreground->data[i] = strength_of(lightness, chroma, disturbance);
        ++*count;
    }
    return 1;
}
