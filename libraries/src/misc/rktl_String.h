#pragma once

#include "streams/rksl_Serializable.h"

#include <cstdarg>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace rktl {

template <class T> class SmartArray;

/// Text as bytes, with no encoding assumed, that can serialise itself. All operations of the standard string are at hand.
/// No operation fails on bad text: it gives an empty or partial value.
class String : public std::string, public rksl::Serializable {
public:
    String() = default;
    String(char const* text); ///< null gives the empty text
    String(char const* text, size_t length);
    String(std::string const& text);
    String(std::string&& text);
    explicit String(std::string_view text);
    String(size_t count, char fill);

    // ---- Made from something else ----

    /// Formats with the directives of vsnprintf; a bad format gives "". arguments is left usable.
#ifdef __GNUC__
    __attribute__((format(printf, 1, 0)))
#endif
    static String
    fromVAList(char const* format, va_list arguments);
#ifdef __GNUC__
    __attribute__((format(printf, 1, 2)))
#endif
    static String
    fromFormat(char const* format, ...);

    /// decimals: digits behind the point.
    static String fromFloat(float value, int decimals);
    static String fromInteger(int value);

    /// The value of that environment variable; "" when it is unset.
    static String fromEnvVarible(char const* name);

    // ---- Read as something else ----

    /// Digits with blanks or tabs around them, with a sign before and at most one point among them; a lone sign or point
    /// passes too. isInteger: false when a point stood there.
    bool isNumeric(bool& isInteger) const;

    /// The decimal number that the text begins with, 0 for none, held within the result's range.
    int32_t toInteger() const;
    uint32_t toUnsignedInt() const;

    /// True for "true", "t", "yes", "y", "on" in any case; for other texts when the decimal number is not 0.
    bool toBool() const;

    /// target: room for count + 1 bytes. Copies at most count characters, and a NUL behind them.
    virtual void copyString(char* target, unsigned int count) const;

    /// A copy with its NUL, which the size counts.
    operator SmartArray<char>() const;

    // ---- Compared, changed ----

    /// Below 0, 0 or above 0, ignoring case (rk_stricmp).
    int iCompare(String const& other) const;
    bool hasPrefix(std::string_view prefix) const;

    String toLower() const;
    String toUpper() const;

    /// Without blanks, tabs, line feeds and carriage returns at either end.
    String trim() const;

    /// With fill added up to count characters; a longer text stays whole.
    String padEnd(unsigned int count, char fill) const;

    /// At most count characters, the last three of a text cut short being "..."; "" for a count of 2 or less. 0xFFFFFFFF is
    /// no limit.
    String abbreviate(unsigned int count) const;

    /// The text between the first `first` and the next `second` behind it; "" when one is missing.
    String extract(std::string_view first, std::string_view second) const;

    /// text without the characters outside allowed, then trimmed.
    static String sanitize(String const& text, char const* allowed);

    /// & < > ' " as the entities of XML, and back. A round of decodeHtml takes "&amp;lt;" to "<": it decodes "&amp;" in the
    /// whole text first.
    static String encodeHtml(String const& text);
    static String decodeHtml(String const& text);

    /// With replacement in the place of each element of that tag, its content included. Plain text search (rkxml_Tags.h);
    /// an open tag that is never closed ends the work.
    String replaceElement(String const& tag, String const& replacement) const;

    // ---- Split, joined ----

    /// Positions of all characters of delimiters that stand outside of stretches quoted by one of the characters of quotes.
    /// In a stretch a backslash skips the character behind it; a stretch that never closes ends the search.
    std::vector<size_t> findAll(std::string_view delimiters, std::string_view quotes = "") const;

    /// The pieces between the positions of findAll, quotes included, empty ones left out. Empty delimiters: the whole text.
    std::list<String> tokenize(std::string_view delimiters, std::string_view quotes = "") const;

    /// Adds the tokens of text to a list or set; elements that are not made from text, such as rktl::Integer, get toInteger().
    template <class Container>
    static void tokenize(String const& text, std::string_view delimiters, Container& container, std::string_view quotes = "");

    /// Texts or whole numbers in their order, with separator between them; "" for none.
    template <class Container> static String join(Container const& container, std::string_view separator);

    // ---- Stored ----

    /// Binary form: u32 count, that many bytes, NUL. It is read up to the first NUL whatever the count says, so a text comes
    /// back cut at a NUL of its own. XML form: the text by encodeHtml; "<tag/>" when it is empty. Null tag: "".
    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// The file holds the bare text. False when it cannot be opened, written or read.
    bool toFile(char const* path) const override;
    bool fromFile(char const* path) override;
};

template <class Container>
void String::tokenize(String const& text, std::string_view delimiters, Container& container, std::string_view quotes)
{
    using Value = typename Container::value_type;
    for (String& token : text.tokenize(delimiters, quotes)) {
        if constexpr (std::is_constructible_v<Value, String&&>)
            container.insert(container.end(), Value(std::move(token)));
        else
            container.insert(container.end(), Value(token.toInteger()));
    }
}

template <class Container> String String::join(Container const& container, std::string_view separator)
{
    String joined;
    bool first = true;
    for (auto const& element : container) {
        if (!first)
            joined += separator;
        first = false;
        if constexpr (std::is_convertible_v<decltype(element), std::string_view>)
            joined += element;
        else
            joined += fromInteger(element);
    }
    return joined;
}

} // namespace rktl
