#include "misc/rktl_TimeStamp.h"

#include "misc/rk_clock.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeFields.h"
#include "misc/rktl_TimeParser.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace rktl {

namespace {

constexpr char XML_FORMAT[] = "%a %b %d %H:%M:%S.%s %Z %Y";
constexpr unsigned int BINARY_FIELDS = 8; // bytes of the binary form before the GMT flag

int32_t held(int64_t seconds)
{
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(seconds, Limits::min(), Limits::max()));
}

uint16_t heldMilliseconds(int64_t microseconds)
{
    return static_cast<uint16_t>(std::clamp<int64_t>(microseconds / 1000, 0, std::numeric_limits<uint16_t>::max()));
}

int32_t secondsOfLocal(int year, int month, int day, int hour, int minute, int second)
{
    tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = month;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = -1;
    return secondsOf(fields);
}

// Replaces each "%c" of that code. "%%" is a pair of its own, whose second half opens no code.
void replaceFormatCode(String& format, char code, String const& replacement)
{
    for (size_t at = 0; at + 1 < format.size();) {
        bool const found = format[at] == '%' && format[at + 1] == code;
        bool const pair = format[at] == '%' && format[at + 1] == '%';
        if (found)
            format.replace(at, 2, replacement);
        at += found || pair ? 2 : 1;
    }
}

bool digitsAt(String const& text, size_t position, int& value)
{
    if (text.size() < position + 2)
        return false;
    auto const isDigit = [&](size_t at) { return std::isdigit(static_cast<unsigned char>(text[at])) != 0; };
    if (!isDigit(position) || !isDigit(position + 1))
        return false;
    value = (text[position] - '0') * 10 + (text[position + 1] - '0');
    return true;
}

// Nothing for a text that does not agree with the format: no stamp could stand for that, since a valid text may give the epoch.
std::optional<TimeStamp> parseLocal(String const& text, String const& format)
{
    TimeParser parser(text, TimeStamp::systemTime().getTM());
    if (!parser.read(format))
        return std::nullopt;
    tm fields = parser.fields();
    int32_t const seconds = secondsOf(fields);
    if (seconds == -1)
        return std::nullopt;
    TimeStamp const stamp(seconds, parser.milliseconds(), false);
    // A day that does not exist became another one, and what stands between the fields was not looked at.
    String const printed = stamp.toString(format);
    if (printed.empty() || !text.hasPrefix(printed))
        return std::nullopt;
    return stamp;
}

} // namespace

TimeStamp::TimeStamp(int64_t seconds, uint16_t milliseconds, bool gmt)
    : mSeconds(held(held(seconds) + int64_t(milliseconds / 1000)))
    , mMilliseconds(milliseconds % 1000)
    , mGMT(gmt)
{
}

TimeStamp::TimeStamp(
    uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t minute, uint16_t second, uint16_t milliseconds, bool gmt)
    : TimeStamp(secondsOfLocal(year, month - 1, day, hour, minute, second), milliseconds, gmt)
{
}

TimeStamp::TimeStamp(timeval const& time)
    : TimeStamp(time.tv_sec, heldMilliseconds(time.tv_usec), false)
{
}

TimeStamp TimeStamp::systemTime()
{
    return systemTimeGMT().toLocal();
}

TimeStamp TimeStamp::systemTimeGMT()
{
    return fromElapsedTime(ElapsedTime(rk_wallclock()));
}

TimeStamp TimeStamp::fromElapsedTime(ElapsedTime const& sinceEpoch)
{
    return TimeStamp(0, 0, true) + sinceEpoch;
}

TimeStamp TimeStamp::toGMT() const
{
    TimeStamp stamp(*this);
    stamp.mGMT = true;
    return stamp;
}

TimeStamp TimeStamp::toLocal() const
{
    TimeStamp stamp(*this);
    stamp.mGMT = false;
    return stamp;
}

TimeStamp::operator timeval() const
{
    timeval time = {};
    time.tv_sec = mSeconds;
    time.tv_usec = mMilliseconds * 1000;
    return time;
}

tm TimeStamp::getTM() const
{
    return timeFields(mSeconds, mGMT);
}

ElapsedTime TimeStamp::tzOffset()
{
    int32_t const now = systemTime().getSeconds();
    tm local = timeFields(now, false);
    local.tm_isdst = 0;
    tm gmt = timeFields(now, true);
    gmt.tm_isdst = 0;
    double const seconds = static_cast<double>(secondsOf(local)) - static_cast<double>(secondsOf(gmt));
    return ElapsedTime(static_cast<int64_t>(std::round(seconds / 1800.0)) * 1800000);
}

char const* TimeStamp::monthStr(unsigned int index)
{
    static constexpr char const* NAMES[] = {
        "January", "February", "March", "April", "May", "June", "July", "August", "September", "October", "November", "December"};
    return index < std::size(NAMES) ? NAMES[index] : "";
}

char const* TimeStamp::dayStr(unsigned int index)
{
    static constexpr char const* NAMES[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    return index < std::size(NAMES) ? NAMES[index] : "";
}

String TimeStamp::toString(String const& format) const
{
    if (format == "ISO8601")
        return toISOString();
    tm const fields = getTM();
    String pattern = format;
    replaceFormatCode(pattern, 's', String::fromFormat("%03d", mMilliseconds));
    replaceFormatCode(pattern, 'D', String::fromFormat("%2d", fields.tm_mday));
    if (mGMT) {
        replaceFormatCode(pattern, 'z', "GMT");
        replaceFormatCode(pattern, 'Z', "GMT");
    }
    String text(format.size() * 10, '\0');
    text.resize(std::strftime(text.data(), text.size(), pattern.c_str(), &fields));
    return text;
}

String TimeStamp::toISOString() const
{
    String const text = toString("%Y-%m-%dT%H:%M:%S.%s");
    if (mGMT)
        return text + "Z";
    int64_t const minutes = tzOffset().toMilliseconds() / 60000;
    int const size = static_cast<int>(std::abs(minutes));
    return text + String::fromFormat("%c%02d:%02d", minutes < 0 ? '-' : '+', size / 60 % 24, size % 60);
}

String TimeStamp::toCondString(String const& format, String const& otherFormat) const
{
    if (!isSet())
        return {};
    tm const shown = getTM();
    tm const today = systemTime().getTM();
    bool const same = shown.tm_year == today.tm_year && shown.tm_mon == today.tm_mon && shown.tm_mday == today.tm_mday;
    return toString(same ? format : otherFormat);
}

TimeStamp TimeStamp::fromString(String const& text, String const& format)
{
    if (format == "ISO8601")
        return fromISOString(text);
    return parseLocal(text, format).value_or(TimeStamp());
}

TimeStamp TimeStamp::fromISOString(String const& text)
{
    if (text.size() < 19)
        return {};
    bool const hasMilliseconds = text.size() > 19 && text[19] == '.';
    size_t const length = hasMilliseconds ? 23 : 19;
    auto const local = parseLocal(text.substr(0, length), hasMilliseconds ? "%Y-%m-%dT%H:%M:%S.%s" : "%Y-%m-%dT%H:%M:%S");
    if (!local)
        return {};
    if (text.size() <= length)
        return *local;
    TimeStamp const gmt = *local + tzOffset();
    if (text[length] == 'Z')
        return gmt;
    int hours = 0;
    int minutes = 0;
    if (!digitsAt(text, length + 1, hours) || !digitsAt(text, length + 4, minutes))
        return {};
    ElapsedTime const offset = ElapsedTime::fromMinutes(hours * 60 + minutes);
    return text[length] == '-' ? gmt + offset : gmt - offset;
}

TimeStamp TimeStamp::operator+(ElapsedTime const& span) const
{
    int64_t const room = std::numeric_limits<int64_t>::max() - mMilliseconds;
    return moved(mMilliseconds + std::min(span.toMilliseconds(), room));
}

TimeStamp TimeStamp::operator-(ElapsedTime const& span) const
{
    int64_t const room = mMilliseconds - std::numeric_limits<int64_t>::max();
    return moved(mMilliseconds - std::max(span.toMilliseconds(), room));
}

TimeStamp TimeStamp::moved(int64_t milliseconds) const
{
    int64_t seconds = mSeconds + milliseconds / 1000;
    int64_t rest = milliseconds % 1000;
    if (rest < 0) {
        rest += 1000;
        --seconds;
    }
    return TimeStamp(seconds, static_cast<uint16_t>(rest), mGMT);
}

unsigned int TimeStamp::getTypeId() const
{
    return 502;
}

String TimeStamp::getTypeName() const
{
    return "rktl_TimeStamp";
}

String TimeStamp::toXML(char const* tag) const
{
    return toXML(tag, XML_FORMAT);
}

String TimeStamp::toXML(char const* name, String const& format) const
{
    if (!name)
        return {};
    return String("<") + name + " format=\"" + String::encodeHtml(format) + "\">" + String::encodeHtml(toString(format)) + "</" +
        name + ">";
}

bool TimeStamp::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    *this = fromString(element.getValue(), element.getAttribute("format"));
    return isSet();
}

unsigned int TimeStamp::getBinLength() const
{
    return BINARY_FIELDS + 1;
}

unsigned int TimeStamp::toBin(unsigned char* out) const
{
    static constexpr unsigned char NO_TIME[BINARY_FIELDS] = {};
    rksl::ByteWriter writer(out);
    if (isSet()) {
        tm const fields = timeFields(mSeconds, false);
        for (int const field : {fields.tm_year, fields.tm_mon, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec})
            writer.u8(static_cast<uint8_t>(field));
        writer.u16(mMilliseconds);
    } else {
        writer.bytes(NO_TIME, BINARY_FIELDS);
    }
    writer.u8(mGMT ? 1 : 0);
    return writer.written();
}

unsigned int TimeStamp::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    unsigned char const* const fields = reader.bytes(BINARY_FIELDS);
    bool const gmt = reader.u8() != 0;
    mSeconds = 0;
    mMilliseconds = 0;
    if (std::any_of(fields, fields + BINARY_FIELDS, [](unsigned char byte) { return byte != 0; })) {
        mSeconds = secondsOfLocal(1900 + fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]);
        mMilliseconds = static_cast<uint16_t>(fields[6] | fields[7] << 8);
    }
    mGMT = gmt;
    return reader.position();
}

} // namespace rktl
