#include "misc/rktl_TimeParser.h"

#include "misc/rktl_TimeStamp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <strings.h>

namespace rktl {

namespace {

constexpr size_t WHOLE_NAME = std::numeric_limits<size_t>::max();

} // namespace

bool TimeParser::read(String const& format)
{
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            ++mPosition;
            continue;
        }
        if (++i == format.size() || !readField(format[i]))
            return false;
    }
    applyHalf();
    mFields.tm_isdst = -1;
    return true;
}

bool TimeParser::readField(char code)
{
    switch (code) {
    case 'A':
        return readName(&TimeStamp::dayStr, WHOLE_NAME, true, mFields.tm_wday);
    case 'a':
        return readName(&TimeStamp::dayStr, 3, true, mFields.tm_wday);
    case 'B':
        return readName(&TimeStamp::monthStr, WHOLE_NAME, false, mFields.tm_mon);
    case 'b':
        return readName(&TimeStamp::monthStr, 3, true, mFields.tm_mon);
    case 'p':
        return readHalf();
    case '%':
        mPosition += 1;
        return true;
    case 'U':
    case 'W':
        mPosition += 2;
        return true;
    case 'Z':
    case 'z':
        mPosition += 3;
        return true;
    case 'c':
    case 'X':
    case 'x':
        return false;
    default:
        return readNumber(code);
    }
}

bool TimeParser::readNumber(char code)
{
    int value = 0;
    switch (code) {
    case 'D':
    case 'd':
        return readNumber(2, 1, 31, mFields.tm_mday);
    case 'H':
        return readNumber(2, 0, 23, mFields.tm_hour);
    case 'I':
        return readNumber(2, 1, 12, mFields.tm_hour);
    case 'j':
        if (!readNumber(3, 1, 366, value))
            return false;
        mFields.tm_yday = value - 1;
        return true;
    case 'M':
        return readNumber(2, 0, 59, mFields.tm_min);
    case 'm':
        if (!readNumber(2, 1, 12, value))
            return false;
        mFields.tm_mon = value - 1;
        return true;
    case 'S':
        return readNumber(2, 0, 59, mFields.tm_sec);
    case 's':
        return readNumber(3, 0, 999, mMilliseconds);
    case 'w':
        return readNumber(1, 0, 6, mFields.tm_wday);
    case 'Y':
        if (!readNumber(4, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), value))
            return false;
        mFields.tm_year = value - 1900;
        return true;
    case 'y':
        if (!readNumber(2, 0, 99, value))
            return false;
        mFields.tm_year = value < 70 ? value + 100 : value;
        return true;
    default:
        return true; // nothing is read for a code that is not known
    }
}

bool TimeParser::readHalf()
{
    if (mText.compare(std::min(mPosition, mText.size()), 2, "PM") == 0)
        mHalf = Half::PM;
    else if (mText.compare(std::min(mPosition, mText.size()), 2, "AM") == 0)
        mHalf = Half::AM;
    else
        return false;
    mPosition += 2;
    return true;
}

bool TimeParser::readNumber(size_t width, int lowest, int highest, int& value)
{
    if (mPosition > mText.size() || mText.size() - mPosition < width)
        return false;
    long const number = std::strtol(mText.substr(mPosition, width).c_str(), nullptr, 10);
    if (number < lowest || number > highest)
        return false;
    value = static_cast<int>(number);
    mPosition += width;
    return true;
}

bool TimeParser::readName(char const* (*nameOf)(unsigned int), size_t letters, bool anyCase, int& index)
{
    if (mPosition > mText.size())
        return false;
    char const* const text = mText.c_str() + mPosition;
    for (unsigned int i = 0; *nameOf(i) != '\0'; ++i) {
        size_t const length = std::min(letters, std::strlen(nameOf(i)));
        if ((anyCase ? strncasecmp(text, nameOf(i), length) : std::strncmp(text, nameOf(i), length)) == 0) {
            index = static_cast<int>(i);
            mPosition += length;
            return true;
        }
    }
    return false;
}

void TimeParser::applyHalf()
{
    if (mHalf == Half::PM && mFields.tm_hour < 12)
        mFields.tm_hour += 12;
    else if (mHalf == Half::AM && mFields.tm_hour == 12)
        mFields.tm_hour = 0;
}

} // namespace rktl
