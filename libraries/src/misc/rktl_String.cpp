#include "misc/rktl_String.h"

#include "misc/rk_portability.h"
#include "misc/rktl_SmartArray.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"
#include "streams/rkxml_Tags.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>

namespace rktl {

namespace {

constexpr char BLANKS[] = " \t\n\r";

struct Entity {
    char character;
    std::string_view text;
};

// In the order in which they are decoded.
constexpr Entity ENTITIES[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'\'', "&apos;"}, {'"', "&quot;"}};

std::string replaceAll(std::string const& text, std::string_view what, char with)
{
    std::string result;
    size_t done = 0;
    for (size_t found; (found = text.find(what, done)) != std::string::npos; done = found + what.size())
        result.append(text, done, found - done).push_back(with);
    return result.append(text, done);
}

/// The closing quote of a stretch that opens at position; npos when it never closes.
size_t closingQuote(std::string const& text, size_t position)
{
    char const quote = text[position];
    for (size_t i = position + 1; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == quote)
            return i;
    }
    return std::string::npos;
}

} // namespace

String::String(char const* text)
    : std::string(text ? text : "")
{
}

String::String(char const* text, size_t length)
    : std::string(text ? text : "", text ? length : 0)
{
}

String::String(std::string const& text)
    : std::string(text)
{
}

String::String(std::string&& text)
    : std::string(std::move(text))
{
}

String::String(std::string_view text)
    : std::string(text)
{
}

String::String(size_t count, char fill)
    : std::string(count, fill)
{
}

String String::fromVAList(char const* format, va_list arguments)
{
    int const length = rk_vscprintf(format, arguments);
    if (length <= 0)
        return String();
    String text(static_cast<size_t>(length), '\0');
    va_list copy;
    va_copy(copy, arguments);
    vsnprintf(text.data(), text.size() + 1, format, copy);
    va_end(copy);
    return text;
}

String String::fromFormat(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    String const text = fromVAList(format, arguments);
    va_end(arguments);
    return text;
}

String String::fromFloat(float value, int decimals)
{
    return fromFormat("%.*f", decimals, static_cast<double>(value));
}

String String::fromInteger(int value)
{
    return String(std::to_string(value));
}

String String::fromEnvVarible(char const* name)
{
    return name ? String(getenv(name)) : String();
}

bool String::isNumeric(bool& isInteger) const
{
    isInteger = true;
    bool started = false;
    bool ended = false;
    for (char const c : *this) {
        if (c == ' ' || c == '\t') {
            ended = started;
        } else if (c >= '0' && c <= '9') {
            if (ended)
                return false;
            started = true;
        } else if ((c == '+' || c == '-') && !started) {
            started = true;
        } else if (c == '.' && isInteger && !ended) {
            started = true;
            isInteger = false;
        } else {
            return false;
        }
    }
    return started;
}

int32_t String::toInteger() const
{
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(rk_atoi64(c_str()), Limits::min(), Limits::max()));
}

uint32_t String::toUnsignedInt() const
{
    return static_cast<uint32_t>(std::clamp<int64_t>(rk_atoi64(c_str()), 0, std::numeric_limits<uint32_t>::max()));
}

bool String::toBool() const
{
    for (char const* word : {"true", "t", "yes", "y", "on"})
        if (!rk_stricmp(c_str(), word))
            return true;
    return rk_atoi64(c_str()) != 0;
}

void String::copyString(char* target, unsigned int count) const
{
    target[copy(target, count)] = 0;
}

String::operator SmartArray<char>() const
{
    uint32_t const length = static_cast<uint32_t>(size() + 1);
    char* const text = new char[length];
    std::memcpy(text, c_str(), length);
    return SmartArray<char>(text, length);
}

int String::iCompare(String const& other) const
{
    return rk_stricmp(c_str(), other.c_str());
}

bool String::hasPrefix(std::string_view prefix) const
{
    return starts_with(prefix);
}

String String::toLower() const
{
    String changed(*this);
    rk_strlwr(changed.data());
    return changed;
}

String String::toUpper() const
{
    String changed(*this);
    rk_strupr(changed.data());
    return changed;
}

String String::trim() const
{
    size_t const first = find_first_not_of(BLANKS);
    return first == npos ? String() : String(substr(first, find_last_not_of(BLANKS) + 1 - first));
}

String String::padEnd(unsigned int count, char fill) const
{
    String padded(*this);
    if (padded.size() < count)
        padded.resize(count, fill);
    return padded;
}

String String::abbreviate(unsigned int count) const
{
    if (count <= 2)
        return String();
    if (count >= size() || count == 0xFFFFFFFF)
        return *this;
    return substr(0, count - 3) + "...";
}

String String::extract(std::string_view first, std::string_view second) const
{
    size_t const opening = find(first);
    if (opening == npos)
        return String();
    size_t const start = opening + first.size();
    size_t const closing = find(second, start);
    return closing == npos ? String() : String(substr(start, closing - start));
}

String String::sanitize(String const& text, char const* allowed)
{
    std::string_view const passing(allowed ? allowed : "");
    String kept(text);
    std::erase_if(kept, [passing](char c) { return passing.find(c) == std::string_view::npos; });
    return kept.trim();
}

String String::encodeHtml(String const& text)
{
    String encoded;
    encoded.reserve(text.size());
    for (char const c : text) {
        auto const entity =
            std::find_if(std::begin(ENTITIES), std::end(ENTITIES), [c](Entity const& e) { return e.character == c; });
        if (entity == std::end(ENTITIES))
            encoded += c;
        else
            encoded += entity->text;
    }
    return encoded;
}

String String::decodeHtml(String const& text)
{
    std::string decoded(text);
    for (Entity const& entity : ENTITIES)
        decoded = replaceAll(decoded, entity.text, entity.character);
    return decoded;
}

String String::replaceElement(String const& tag, String const& replacement) const
{
    String result;
    size_t done = 0;
    size_t start = 0;
    size_t end = 0;
    bool selfClosed = false;
    while (rkxml::findOpenTag(*this, done, tag, start, end, selfClosed)) {
        size_t closeStart = 0;
        if (!selfClosed && !rkxml::findCloseTag(*this, end + 1, tag, closeStart, end))
            break;
        result.append(*this, done, start - done).append(replacement);
        done = end + 1;
    }
    result.append(*this, done);
    return result;
}

std::vector<size_t> String::findAll(std::string_view delimiters, std::string_view quotes) const
{
    std::string const wanted = std::string(delimiters).append(quotes);
    std::vector<size_t> positions;
    for (size_t i = find_first_of(wanted); i != npos; i = find_first_of(wanted, i + 1)) {
        if (quotes.find(at(i)) == std::string_view::npos) {
            positions.push_back(i);
            continue;
        }
        i = closingQuote(*this, i);
        if (i == npos)
            break;
    }
    return positions;
}

std::list<String> String::tokenize(std::string_view delimiters, std::string_view quotes) const
{
    std::list<String> tokens;
    std::vector<size_t> cuts = delimiters.empty() ? std::vector<size_t>() : findAll(delimiters, quotes);
    cuts.push_back(size());
    size_t start = 0;
    for (size_t const cut : cuts) {
        if (cut > start)
            tokens.emplace_back(substr(start, cut - start));
        start = cut + 1;
    }
    return tokens;
}

unsigned int String::getTypeId() const
{
    return 501;
}

String String::getTypeName() const
{
    return "rktl_String";
}

String String::toXML(char const* tag) const
{
    if (!tag)
        return String();
    String const name(tag);
    if (empty())
        return "<" + name + "/>";
    return "<" + name + ">" + encodeHtml(*this) + "</" + name + ">";
}

bool String::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    *this = element.getValue();
    return true;
}

unsigned int String::getBinLength() const
{
    return static_cast<unsigned int>(size()) + 5;
}

unsigned int String::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u32(static_cast<uint32_t>(size()));
    writer.bytes(c_str(), static_cast<unsigned int>(size()) + 1);
    return writer.written();
}

unsigned int String::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    reader.u32();
    unsigned char const* const text = in + reader.position();
    void const* const nul = reader.remaining() ? std::memchr(text, 0, reader.remaining()) : nullptr;
    if (!nul)
        rksl::ByteReader::fail();
    assign(reinterpret_cast<char const*>(text), static_cast<size_t>(static_cast<unsigned char const*>(nul) - text));
    return getBinLength();
}

bool String::toFile(char const* path) const
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(data(), static_cast<std::streamsize>(size()));
    return file.flush().good();
}

bool String::fromFile(char const* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    std::string text;
    char block[4096];
    while (file.read(block, sizeof(block)) || file.gcount())
        text.append(block, static_cast<size_t>(file.gcount()));
    if (file.bad())
        return false;
    swap(text);
    return true;
}

} // namespace rktl
