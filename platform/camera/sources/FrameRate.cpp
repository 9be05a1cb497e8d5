#include "camera/sources/FrameRate.h"

#include <charconv>

namespace camera {

namespace {

/// The whole text as a decimal number.
bool parseNumber(char const* begin, char const* end, uint32_t& value)
{
    auto const [rest, error] = std::from_chars(begin, end, value);
    return error == std::errc() && rest == end;
}

/// "12.5" as 12500 thousandths.
bool parseDecimal(std::string const& text, size_t point, uint32_t& thousandths)
{
    std::string decimals = text.substr(point + 1);
    uint32_t whole = 0, fraction = 0;
    if (decimals.empty() || decimals.size() > 3)
        return false;
    decimals.resize(3, '0');
    if (!parseNumber(text.data(), text.data() + point, whole) || whole > 1000 ||
        !parseNumber(decimals.data(), decimals.data() + 3, fraction))
        return false;
    thousandths = whole * 1000 + fraction;
    return true;
}

} // namespace

std::optional<FrameRate> FrameRate::parse(std::string const& text)
{
    FrameRate rate;
    char const* const end = text.data() + text.size();
    size_t const slash = text.find('/'), point = text.find('.');
    bool valid;
    if (slash != std::string::npos) {
        valid = parseNumber(text.data(), text.data() + slash, rate.numerator) &&
            parseNumber(text.data() + slash + 1, end, rate.denominator);
    } else if (point != std::string::npos) {
        rate.denominator = 1000;
        valid = parseDecimal(text, point, rate.numerator);
    } else {
        valid = parseNumber(text.data(), end, rate.numerator);
    }
    if (!valid || rate.denominator == 0 || rate.numerator > uint64_t(1000) * rate.denominator ||
        uint64_t(rate.numerator) * 1000 < rate.denominator)
        return std::nullopt;
    return rate;
}

} // namespace camera
