#pragma once

#include "streams/rksl_Serializable.h"

#include <compare>
#include <cstdint>

namespace rktl {

class Integer;

/// A span of time in whole milliseconds; may be negative. A plain value.
///
/// Where a span is made from a double, the result is rounded to milliseconds and held to the range of 64 bits; what is not
/// a number gives 0. Units are the words "day", "hour", "minute", "second" and "millisecond".
///
/// Binary form: the milliseconds as 8 bytes.
class ElapsedTime : public rksl::Serializable {
public:
    ElapsedTime() = default;
    explicit ElapsedTime(int64_t milliseconds)
        : mMilliseconds(milliseconds)
    {
    }

    /// Worked out in double precision, then rounded half away from 0.
    static ElapsedTime fromMilliseconds(double value);
    static ElapsedTime fromSeconds(double value);
    static ElapsedTime fromMinutes(double value);
    static ElapsedTime fromHours(double value);
    static ElapsedTime fromDays(double value);

    /// To the nearest millisecond, halves away from 0.
    static ElapsedTime roundFromMicroseconds(double value);
    static ElapsedTime roundFromNanoseconds(double value);

    /// unit: one of the units, singular or plural, in any case. Any other word gives a span of 0.
    static ElapsedTime fromValUnit(double value, String const& unit);

    int64_t toMilliseconds() const { return mMilliseconds; }

    /// The exact span in the largest unit that divides it; 0 is in milliseconds. value is held to the range of 32 bits.
    void getValUnit(int& value, String& unit) const;

    /// The span in the largest unit of which it is more than 1.5, else in milliseconds; so a negative one always is.
    void getValUnit(double& value, String& unit) const;

    /// Whole days, hours, minutes or seconds, cut towards 0; milliseconds for any other unit. Held to the range of 32 bits.
    Integer toInteger(String const& unit) const;

    /// "1 minute", "100 seconds": exact, or with approximate in the unit that reads best, rounded ("2 minutes").
    String toHumanString(bool approximate) const;

    /// Reads a whole number and a word, which may be any; a word that is no unit gives 0. False, and nothing is changed,
    /// unless both are there.
    bool fromHumanString(char const* text);

    /// "hh:mm:ss.mmm" for 4 fields or more, "mm:ss.mmm" for 3, "ss.mmm" for 2, "mmm" below. What does not fit into the fields
    /// is left out, not carried over; hours go up to 2147483647.
    String toTimeString(unsigned int fields) const;

    /// Plain 64-bit arithmetic: what leaves the range wraps around.
    ElapsedTime operator+(ElapsedTime const& other) const
    {
        return ElapsedTime(
            static_cast<int64_t>(static_cast<uint64_t>(mMilliseconds) + static_cast<uint64_t>(other.mMilliseconds)));
    }
    ElapsedTime operator-(ElapsedTime const& other) const
    {
        return ElapsedTime(
            static_cast<int64_t>(static_cast<uint64_t>(mMilliseconds) - static_cast<uint64_t>(other.mMilliseconds)));
    }
    ElapsedTime operator-() const { return ElapsedTime() - *this; }
    ElapsedTime& operator+=(ElapsedTime const& other) { return *this = *this + other; }
    ElapsedTime& operator-=(ElapsedTime const& other) { return *this = *this - other; }
    ElapsedTime abs() const { return mMilliseconds < 0 ? -*this : *this; }

    /// In double precision, rounded half away from 0.
    ElapsedTime operator*(double factor) const;
    ElapsedTime operator/(double divisor) const;
    ElapsedTime& operator*=(double factor) { return *this = *this * factor; }
    ElapsedTime& operator/=(double divisor) { return *this = *this / divisor; }

    bool operator==(ElapsedTime const& other) const { return mMilliseconds == other.mMilliseconds; }
    std::strong_ordering operator<=>(ElapsedTime const& other) const { return mMilliseconds <=> other.mMilliseconds; }

    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// <tag unit="second">2.5</tag>, with six significant digits: unlike the binary form it may lose some.
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    int64_t mMilliseconds = 0;
};

} // namespace rktl
