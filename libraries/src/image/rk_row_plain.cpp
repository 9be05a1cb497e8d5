#include "image/rk_row_forms.h"

// One byte after the other, as the operations are defined.

namespace {

uint8_t apart(uint8_t a, uint8_t b)
{
    return (uint8_t)(a < b ? b - a : a - b);
}

void difference(uint8_t const* a, uint8_t const* b, uint8_t* out, size_t count, uint8_t threshold, uint8_t value)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = apart(a[i], b[i]) > threshold ? value : 0;
}

void renew(uint8_t* a, uint8_t const* b, uint8_t* out, size_t count, uint8_t threshold, uint8_t value, uint8_t* differs)
{
    for (size_t i = 0; i < count; ++i) {
        if (i % rk_row_run == 0)
            differs[i / rk_row_run] = 0;
        out[i] = apart(a[i], b[i]) > threshold ? value : 0;
        differs[i / rk_row_run] |= out[i] != 0;
        a[i] = b[i];
    }
}

void difference_colour(uint8_t const* a, uint8_t const* b, uint8_t* out, size_t pixels, int32_t squared, uint8_t value)
{
    static_assert(3 * 255 * 255 <= INT32_MAX, "the squared distance of two colours fits");
    for (size_t i = 0; i < pixels; ++i) {
        int32_t distance = 0;
        for (size_t channel = 0; channel < 3; ++channel) {
            int32_t const step = apart(a[4 * i + channel], b[4 * i + channel]);
            distance += step * step;
        }
        out[i] = distance > squared ? value : 0;
    }
}

void running_sum(uint8_t* sum, uint8_t const* old, uint8_t const* fresh, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        sum[i] = (uint8_t)(sum[i] - old[i] + fresh[i]);
}

bool moving_sum(uint8_t* sum, uint8_t const* old, uint8_t const* fresh, uint8_t* motion, size_t count)
{
    bool any = false;
    for (size_t i = 0; i < count; ++i) {
        sum[i] = (uint8_t)(sum[i] - old[i] + fresh[i]);
        motion[i] = sum[i] ? 255 : 0;
        any |= sum[i] != 0;
    }
    return any;
}

void at_least(uint8_t const* in, uint8_t* out, size_t count, uint8_t threshold)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = in[i] >= threshold ? 255 : 0;
}

void and3(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = a[i] & b[i] & c[i];
}

void or3(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = a[i] | b[i] | c[i];
}

bool pack(uint8_t const* in, size_t count, uint8_t threshold, uint64_t* bits)
{
    bool any = false;
    for (size_t i = 0; i < count; ++i) {
        if (i % 64 == 0)
            bits[i / 64] = 0;
        bits[i / 64] |= (uint64_t)(in[i] >= threshold) << i % 64;
        any |= in[i] >= threshold;
    }
    return any;
}

void unpack(uint64_t const* bits, size_t count, uint8_t* out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = bits[i / 64] >> i % 64 & 1 ? 255 : 0;
}

bool two_valued(uint8_t const* in, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (in[i] != 0 && in[i] != 255)
            return false;
    return true;
}

uint32_t count_within(uint8_t const* mask, uint8_t const* a, uint8_t const* b, size_t count, uint8_t threshold)
{
    uint32_t within = 0;
    for (size_t i = 0; i < count; ++i)
        within += mask[i] != 0 && (a[i] >= threshold || b[i] >= threshold);
    return within;
}

uint8_t tenths(uint8_t value, uint8_t mean, uint8_t inverse)
{
    uint32_t const distance = (uint32_t)inverse * apart(value, mean) >> 7;
    return (uint8_t)(distance < 255 ? distance : 255);
}

uint32_t strength(
    uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t const* table, uint8_t* out, size_t count)
{
    uint32_t differing = 0;
    for (size_t i = 0; i < count; ++i) {
        out[i] = table[tenths(values[i], mean[i], inverse[i])];
        differing += out[i] != 0;
    }
    return differing;
}

bool distance(uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t* out, size_t count)
{
    bool far = false;
    for (size_t i = 0; i < count; ++i) {
        out[i] = tenths(values[i], mean[i], inverse[i]);
        far |= out[i] > 10;
    }
    return far;
}

} // namespace

rk_row_kernels const rk_row_plain = {"plain", rk_form_plain, difference, renew, difference_colour, running_sum, moving_sum,
    at_least, and3, or3, pack, unpack, two_valued, count_within, strength, distance};
