#include "misc/rktl_UUID.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <uuid/uuid.h>

namespace rktl {

namespace {

/// Bytes written before each "-" of the text form.
constexpr bool hasDashBefore(size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

/// -1 for what is no hex digit.
int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

UUID::UUID(bool generateOne, bool random)
{
    if (generateOne)
        generate(random);
}

void UUID::generate(bool random)
{
    static_assert(sizeof(uuid_t) == sizeof(mBytes), "the system's identifier is copied as it stands");
    if (random)
        uuid_generate(mBytes.data());
    else
        uuid_generate_time(mBytes.data());
}

bool UUID::isValid() const
{
    return std::any_of(mBytes.begin(), mBytes.end(), [](unsigned char byte) { return byte != 0; });
}

String UUID::toString() const
{
    constexpr char const* digits = "0123456789abcdef";
    String text;
    for (size_t i = 0; i < mBytes.size(); ++i) {
        if (hasDashBefore(i))
            text += '-';
        text += digits[mBytes[i] >> 4];
        text += digits[mBytes[i] & 15];
    }
    return text;
}

bool UUID::fromString(String const& text)
{
    std::array<unsigned char, 16> bytes;
    char const* c = text.c_str(); // its NUL is no hex digit and no dash, so it ends the reading
    for (size_t i = 0; i < bytes.size(); ++i, c += 2) {
        if (hasDashBefore(i) && *c++ != '-')
            return false;
        if (hexValue(c[0]) < 0 || hexValue(c[1]) < 0)
            return false;
        bytes[i] = static_cast<unsigned char>(hexValue(c[0]) << 4 | hexValue(c[1]));
    }
    mBytes = bytes;
    return true;
}

Buffer UUID::toBuffer() const
{
    return Buffer(mBytes.data(), static_cast<unsigned int>(mBytes.size()));
}

unsigned int UUID::getTypeId() const
{
    return 507;
}

String UUID::getTypeName() const
{
    return "UUID";
}

String UUID::toXML(char const* tag) const
{
    return tag ? String::fromFormat("<%s>%s</%s>", tag, toString().c_str(), tag) : String();
}

bool UUID::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    return !element.atEnd() && fromString(element.getValue());
}

unsigned int UUID::getBinLength() const
{
    return static_cast<unsigned int>(mBytes.size());
}

unsigned int UUID::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.bytes(mBytes.data(), getBinLength());
    return writer.written();
}

unsigned int UUID::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    std::copy_n(reader.bytes(getBinLength()), mBytes.size(), mBytes.begin());
    return reader.position();
}

} // namespace rktl
