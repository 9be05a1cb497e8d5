#include "security/rkcl_Base64.h"

#include <array>
#include <cstdint>

namespace rkcl::base64 {

namespace {

constexpr char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t FOREIGN = 0xFF;

constexpr std::array<uint8_t, 256> VALUES = [] {
    std::array<uint8_t, 256> values{};
    values.fill(FOREIGN);
    for (uint8_t i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(ALPHABET[i])] = i;
    return values;
}();

/// Four characters of the alphabet as 24 bits. False for any other character.
bool readGroup(char const* text, uint32_t& bits)
{
    bits = 0;
    uint8_t foreign = 0;
    for (int i = 0; i < 4; ++i) {
        uint8_t const value = VALUES[static_cast<unsigned char>(text[i])];
        foreign |= value;
        bits = bits << 6 | value;
    }
    return foreign < 64;
}

} // namespace

unsigned int encodeLength(unsigned int n)
{
    return static_cast<unsigned int>((uint64_t(n) + 2) / 3 * 4);
}

unsigned int decodeSize(unsigned int n)
{
    return n % 4 ? 0 : n / 4 * 3;
}

unsigned int encode(char* target, void const* source, unsigned int n)
{
    if (!target || !source)
        return 0;
    unsigned char const* in = static_cast<unsigned char const*>(source);
    char* out = target;
    for (; n > 0; in += 3) {
        unsigned int const taken = n < 3 ? n : 3;
        n -= taken;
        uint32_t const bits = uint32_t(in[0]) << 16 | uint32_t(taken > 1 ? in[1] : 0) << 8 | (taken > 2 ? in[2] : 0);
        *out++ = ALPHABET[bits >> 18];
        *out++ = ALPHABET[bits >> 12 & 63];
        *out++ = taken > 1 ? ALPHABET[bits >> 6 & 63] : '=';
        *out++ = taken > 2 ? ALPHABET[bits & 63] : '=';
    }
    return static_cast<unsigned int>(out - target);
}

rktl::String encode(void const* source, unsigned int n)
{
    rktl::String text(source ? encodeLength(n) : 0, '=');
    encode(text.data(), source, n);
    return text;
}

unsigned int decode(void* target, char const* text, unsigned int n)
{
    if (!target || !text || !n || n % 4)
        return 0;
    unsigned int const padding = text[n - 1] != '=' ? 0 : text[n - 2] != '=' ? 1 : 2;
    unsigned char* const out = static_cast<unsigned char*>(target);
    unsigned int const length = decodeSize(n) - padding;
    for (unsigned int group = 0; group < n / 4; ++group) {
        char last[4] = {text[4 * group], text[4 * group + 1], text[4 * group + 2], text[4 * group + 3]};
        if (group == n / 4 - 1)
            for (unsigned int i = 0; i < padding; ++i)
                last[3 - i] = 'A';
        uint32_t bits = 0;
        if (!readGroup(last, bits))
            return 0;
        for (unsigned int i = 0; i < 3 && 3 * group + i < length; ++i)
            out[3 * group + i] = static_cast<unsigned char>(bits >> (16 - 8 * i));
    }
    return length;
}

unsigned int decode(void* target, rktl::String const& text)
{
    return decode(target, text.data(), static_cast<unsigned int>(text.size()));
}

} // namespace rkcl::base64
