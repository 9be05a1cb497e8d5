#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_Serializable.h"

#include <compare>
#include <cstdint>
#include <ctime>
#include <sys/time.h>

namespace rktl {

/// A moment of wall-clock time, to the millisecond, from 1970 to January 2038. A plain value.
///
/// A stamp at or before the epoch is empty, which stands for "no time"; failed parsing and moments that 32 bits of seconds
/// cannot hold give such a stamp. Arithmetic holds the seconds to the range of 32 bits. Comparisons look at the moment
/// only, never at the zone that it is shown in.
///
/// Formats are those of strftime (ISO/IEC 9899), with these differences: "%s" is the milliseconds as three digits and "%D"
/// the day of the month in two characters, blank-padded. The format "ISO8601" stands for the form of toISOString.
///
/// Binary form, 9 bytes: year - 1900, month from 0, day, hour, minute, second (a byte each, always in local time),
/// milliseconds (16 bits), the GMT flag. An empty stamp is eight zero bytes and the flag.
class TimeStamp : public rksl::Serializable {
public:
    TimeStamp() = default;

    /// Milliseconds from 1000 on carry into the seconds.
    TimeStamp(int64_t seconds, uint16_t milliseconds, bool gmt);

    /// Local time, whatever gmt says. year in full, month and day from 1; fields out of their range carry, as in mktime.
    TimeStamp(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t minute, uint16_t second, uint16_t milliseconds,
        bool gmt);

    explicit TimeStamp(timeval const& time);

    /// Now, by rk_wallclock.
    static TimeStamp systemTime();
    static TimeStamp systemTimeGMT();

    /// The moment that far from the epoch, in GMT.
    static TimeStamp fromElapsedTime(ElapsedTime const& sinceEpoch);
    ElapsedTime toElapsedTime() const { return ElapsedTime(int64_t(mSeconds) * 1000 + mMilliseconds); }

    /// The same moment shown in the other zone.
    TimeStamp toGMT() const;
    TimeStamp toLocal() const;

    bool isSet() const { return mSeconds > 0 || (mSeconds == 0 && mMilliseconds > 0); }
    bool isGMT() const { return mGMT; }
    int32_t getSeconds() const { return mSeconds; }
    uint16_t getMilliseconds() const { return mMilliseconds; }
    explicit operator long() const { return mSeconds; }
    explicit operator timeval() const;

    /// Broken down in the zone that the stamp is shown in.
    tm getTM() const;

    /// Local time minus GMT at present, daylight saving included, rounded to half hours.
    static ElapsedTime tzOffset();

    /// English names; index from 0, January or Sunday. An index without a name gives an empty text.
    static char const* monthStr(unsigned int index);
    static char const* dayStr(unsigned int index);

    /// The text is empty where it is longer than ten times the format.
    String toString(String const& format) const;

    /// 2009-07-01T12:30:00.250, with "Z" behind it in GMT, or the present offset of local time such as "+02:00".
    String toISOString() const;

    /// format on the day of today in local time, otherFormat on any other day, an empty text for an empty stamp.
    String toCondString(String const& format, String const& otherFormat) const;

    /// Reads fields of fixed width: %Y 4; %j %s %a %b %Z %z 3; %y %m %D %d %H %I %M %S %p %U %W 2; %w 1; %A %B a full name.
    /// What format does not name keeps its present local value, the milliseconds are 0. %U, %W, %Z and %z are not interpreted.
    /// text has to begin with what toString(format) makes of the result; it may go on. Else, and where text or format end
    /// within a field, and for %c, %x and %X, the stamp is empty.
    static TimeStamp fromString(String const& text, String const& format);

    /// Reads yyyy-mm-ddThh:mm:ss, then optionally .mmm, then optionally Z or an offset such as +02:00; local time without
    /// the latter. ISO 8601, extended format. The stamp is shown in local time; empty for any other text.
    static TimeStamp fromISOString(String const& text);

    ElapsedTime operator-(TimeStamp const& other) const { return toElapsedTime() - other.toElapsedTime(); }
    TimeStamp operator+(ElapsedTime const& span) const;
    TimeStamp operator-(ElapsedTime const& span) const;
    TimeStamp& operator+=(ElapsedTime const& span) { return *this = *this + span; }
    TimeStamp& operator-=(ElapsedTime const& span) { return *this = *this - span; }

    bool operator==(TimeStamp const& other) const { return (*this <=> other) == 0; }
    std::strong_ordering operator<=>(TimeStamp const& other) const
    {
        auto const seconds = mSeconds <=> other.mSeconds;
        return seconds != 0 ? seconds : mMilliseconds <=> other.mMilliseconds;
    }

    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    /// Does not change the stamp where xml is no element; otherwise the stamp is what was read, and empty where that failed.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// An element called name, with the attribute "format" and the text that it gives.
    virtual String toXML(char const* name, String const& format) const;

private:
    // The stamp's seconds, and that many milliseconds in the place of its own.
    TimeStamp moved(int64_t milliseconds) const;

    int32_t mSeconds = 0;       // of the Unix epoch
    uint16_t mMilliseconds = 0; // 0 to 999
    bool mGMT = false;          // shown in GMT; changes no moment
};

} // namespace rktl
