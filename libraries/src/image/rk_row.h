#pragma once

#include <cstddef>
#include <cstdint>

/// Pixels that renew looks at together.
constexpr size_t rk_row_run = 128;

enum rk_form { rk_form_plain, rk_form_portable, rk_form_avx2 };

/// The loops that the vision core spends its time in, over runs of bytes, in several forms with bit-identical results. `plain`
/// is written to be read, and is what the others are compared with. `portable` is written to be vectorised by the compiler for
/// whatever the build aims at (NEON on the cameras' boards). `avx2` is the same source compiled for that extension; it is there
/// on x86-64 only, and taken where the processor has it.
///
/// Nothing is checked in here. Runs may have any length, 0 included, and any alignment. Outputs do not overlap inputs, unless
/// noted.
struct rk_row_kernels {
    char const* name; ///< "plain", "portable" or "avx2"
    rk_form form;

    /// out[i] = |a[i] - b[i]| > threshold ? value : 0
    void (*difference)(uint8_t const* a, uint8_t const* b, uint8_t* out, size_t count, uint8_t threshold, uint8_t value);

    /// The same, and a takes over the bytes of b. differs tells for each rk_row_run pixels whether any of out is not 0.
    void (*renew)(uint8_t* a, uint8_t const* b, uint8_t* out, size_t count, uint8_t threshold, uint8_t value, uint8_t* differs);

    /// As difference for pixels of four bytes: the squared distance over the first three against squared.
    void (*difference_colour)(uint8_t const* a, uint8_t const* b, uint8_t* out, size_t pixels, int32_t squared, uint8_t value);

    /// sum[i] = sum[i] - old[i] + fresh[i], wrapping.
    void (*running_sum)(uint8_t* sum, uint8_t const* old, uint8_t const* fresh, size_t count);

    /// The same, and motion[i] = sum[i] ? 255 : 0. Returns whether any of motion is set.
    bool (*moving_sum)(uint8_t* sum, uint8_t const* old, uint8_t const* fresh, uint8_t* motion, size_t count);

    /// out[i] = in[i] >= threshold ? 255 : 0. in may be out.
    void (*at_least)(uint8_t const* in, uint8_t* out, size_t count, uint8_t threshold);

    /// out[i] = a[i] & b[i] & c[i], and the same with |.
    void (*and3)(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* out, size_t count);
    void (*or3)(uint8_t const* a, uint8_t const* b, uint8_t const* c, uint8_t* out, size_t count);

    /// Bit i % 64 of bits[i / 64] tells whether in[i] >= threshold. Bits behind the last byte become 0.
    /// Returns whether any bit is set.
    bool (*pack)(uint8_t const* in, size_t count, uint8_t threshold, uint64_t* bits);

    /// Each bit becomes a byte, 255 or 0.
    void (*unpack)(uint64_t const* bits, size_t count, uint8_t* out);

    /// Whether every byte is 0 or 255.
    bool (*two_valued)(uint8_t const* in, size_t count);

    /// How many i have mask[i] != 0 and max(a[i], b[i]) >= threshold. Runs of up to 2^31 bytes.
    uint32_t (*count_within)(uint8_t const* mask, uint8_t const* a, uint8_t const* b, size_t count, uint8_t threshold);

    /// How far values lie from their means: out[i] = table[min(255, (inverse[i] * |values[i] - mean[i]|) >> 7)].
    /// table[0] to table[10] must be 0. Returns how many of out are not 0.
    uint32_t (*strength)(
        uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t const* table, uint8_t* out, size_t count);

    /// The index into that table, without the look-up. Returns false when no index is above 10.
    bool (*distance)(uint8_t const* values, uint8_t const* mean, uint8_t const* inverse, uint8_t* out, size_t count);
};

/// The form in use: the fastest that the processor can run, unless another was asked for. Valid until rk_row_use.
rk_row_kernels const& rk_row();

/// True while the form in use is the plain one: whole-image operations then take their plain road as well.
bool rk_row_is_plain();

/// Makes a form the one in use, by its name; null takes the fastest again. Returns 0, with nothing changed, for a form that is
/// unknown or that this processor or build has not. Not while another thread works on images. The environment variable
/// CONTRAFLOW_KERNELS names the form to start with.
int rk_row_use(char const* name);

/// The forms of this build that this processor can run, ended by null.
rk_row_kernels const* const* rk_row_forms();
