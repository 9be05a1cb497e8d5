#include "misc/rktl_ElapsedTime.h"

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace rktl {

namespace {

using Limits64 = std::numeric_limits<int64_t>;

struct Unit {
    char const* name;
    int64_t milliseconds;
};

constexpr Unit UNITS[] = {{"day", 86400000}, {"hour", 3600000}, {"minute", 60000}, {"second", 1000}, {"millisecond", 1}};
constexpr Unit const* MILLISECOND = std::end(UNITS) - 1;

// Neither limit can be left: what is not below 2^63 becomes the largest number.
int64_t toWhole(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775808.0)
        return Limits64::max();
    return value <= -9223372036854775808.0 ? Limits64::min() : static_cast<int64_t>(value);
}

ElapsedTime rounded(double milliseconds)
{
    return ElapsedTime(toWhole(std::round(milliseconds)));
}

ElapsedTime roundedFrom(double value, double perMillisecond)
{
    return ElapsedTime(toWhole((value + std::copysign(perMillisecond / 2.0, value)) / perMillisecond));
}

int32_t toInt32(int64_t value)
{
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

double countOf(Unit const& unit, int64_t milliseconds)
{
    return static_cast<double>(milliseconds) / static_cast<double>(unit.milliseconds);
}

// The first unit from `largest` on of which the span is more than 1.5.
Unit const& readableUnit(int64_t milliseconds, Unit const* largest)
{
    return *std::find_if(largest, MILLISECOND, [=](Unit const& unit) { return countOf(unit, milliseconds) > 1.5; });
}

} // namespace

ElapsedTime ElapsedTime::fromMilliseconds(double value)
{
    return rounded(value);
}

ElapsedTime ElapsedTime::fromSeconds(double value)
{
    return rounded(value * 1000.0);
}

ElapsedTime ElapsedTime::fromMinutes(double value)
{
    return rounded(value * 60000.0);
}

ElapsedTime ElapsedTime::fromHours(double value)
{
    return rounded(value * 3600000.0);
}

ElapsedTime ElapsedTime::fromDays(double value)
{
    return rounded(value * 86400000.0);
}

ElapsedTime ElapsedTime::roundFromMicroseconds(double value)
{
    return roundedFrom(value, 1000.0);
}

ElapsedTime ElapsedTime::roundFromNanoseconds(double value)
{
    return roundedFrom(value, 1000000.0);
}

ElapsedTime ElapsedTime::fromValUnit(double value, String const& unit)
{
    String const word = unit.toLower();
    for (Unit const& known : UNITS)
        if (word == known.name || word == std::string(known.name) + "s")
            return rounded(value * static_cast<double>(known.milliseconds));
    return {};
}

void ElapsedTime::getValUnit(int& value, String& unit) const
{
    Unit const& exact = mMilliseconds == 0 ? *MILLISECOND : *std::find_if(UNITS, MILLISECOND, [this](Unit const& candidate) {
        return mMilliseconds % candidate.milliseconds == 0;
    });
    value = toInt32(mMilliseconds / exact.milliseconds);
    unit = exact.name;
}

void ElapsedTime::getValUnit(double& value, String& unit) const
{
    Unit const& readable = readableUnit(mMilliseconds, UNITS);
    value = countOf(readable, mMilliseconds);
    unit = readable.name;
}

Integer ElapsedTime::toInteger(String const& unit) const
{
    Unit const* const known = std::find_if(UNITS, MILLISECOND, [&](Unit const& candidate) { return unit == candidate.name; });
    return toInt32(mMilliseconds / known->milliseconds);
}

String ElapsedTime::toHumanString(bool approximate) const
{
    int value = 0;
    String unit;
    if (approximate) {
        double exact = 0.0;
        getValUnit(exact, unit);
        value = toInt32(toWhole(std::round(exact)));
    } else {
        getValUnit(value, unit);
    }
    return String::fromFormat("%d %s%s", value, unit.c_str(), value == 1 ? "" : "s");
}

bool ElapsedTime::fromHumanString(char const* text)
{
    if (!text)
        return false;
    char* behind = nullptr;
    int const value = toInt32(std::strtoll(text, &behind, 10));
    if (behind == text)
        return false;
    auto const isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    while (isSpace(*behind))
        ++behind;
    char const* const word = behind;
    while (*behind != '\0' && !isSpace(*behind))
        ++behind;
    if (behind == word)
        return false;
    *this = fromValUnit(value, String(word, static_cast<size_t>(behind - word)));
    return true;
}

String ElapsedTime::toTimeString(unsigned int fields) const
{
    String text;
    if (fields >= 4)
        text += String::fromFormat("%02d:", toInt32(mMilliseconds / 3600000));
    if (fields >= 3)
        text += String::fromFormat("%02d:", toInt32(mMilliseconds / 60000 % 60));
    if (fields >= 2)
        text += String::fromFormat("%02d.", toInt32(mMilliseconds / 1000 % 60));
    return text + String::fromFormat("%03d", toInt32(mMilliseconds % 1000));
}

// Sums are taken unsigned, where leaving the range is defined.

ElapsedTime ElapsedTime::operator*(double factor) const
{
    return rounded(static_cast<double>(mMilliseconds) * factor);
}

ElapsedTime ElapsedTime::operator/(double divisor) const
{
    return rounded(static_cast<double>(mMilliseconds) / divisor);
}

unsigned int ElapsedTime::getTypeId() const
{
    return 503;
}

String ElapsedTime::getTypeName() const
{
    return "rktl_ElapsedTime";
}

String ElapsedTime::toXML(char const* tag) const
{
    if (!tag)
        return {};
    Unit const& unit = readableUnit(mMilliseconds, UNITS + 1); // days are never written
    return String::fromFormat("<%s unit=\"%s\">%g</%s>", tag, unit.name, countOf(unit, mMilliseconds), tag);
}

bool ElapsedTime::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    String const unit = element.getAttribute("unit");
    *this = fromValUnit(std::strtod(element.getValue().c_str(), nullptr), unit);
    return true;
}

unsigned int ElapsedTime::getBinLength() const
{
    return 8;
}

unsigned int ElapsedTime::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.i64(mMilliseconds);
    return writer.written();
}

unsigned int ElapsedTime::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    mMilliseconds = reader.i64();
    return reader.position();
}

} // namespace rktl
