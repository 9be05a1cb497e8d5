#pragma once

#include "misc/rktl_String.h"

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace rktl {

/// Reads a text by a format of fixed-width fields (see TimeStamp::fromString) into broken-down local time. It does not compare
/// what stands between the fields, nor does it ask whether the fields agree with one another.
class TimeParser {
public:
    /// base: what the format does not name. text must outlive the parser.
    TimeParser(String const& text, tm const& base)
        : mText(text)
        , mFields(base)
    {
    }

    /// False for a field out of its range, a name that is none, a code that is not supported, and where text or format end
    /// within a field.
    bool read(String const& format);

    /// Daylight saving is unknown; not normalised.
    tm const& fields() const { return mFields; }
    uint16_t milliseconds() const { return static_cast<uint16_t>(mMilliseconds); }

private:
    enum class Half { None, AM, PM };

    bool readField(char code);
    bool readNumber(char code);
    bool readHalf();
    bool readNumber(size_t width, int lowest, int highest, int& value);
    bool readName(char const* (*nameOf)(unsigned int), size_t letters, bool anyCase, int& index);
    void applyHalf();

    String const& mText;
    size_t mPosition = 0;
    tm mFields;
    int mMilliseconds = 0;
    Half mHalf = Half::None;
};

} // namespace rktl
