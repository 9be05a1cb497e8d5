#include "misc/rktl_Integer.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

namespace rktl {

namespace {

/// 0 for bits that a value does not have.
uint32_t maskOf(unsigned short bit)
{
    return bit < 32 ? uint32_t(1) << bit : 0;
}

} // namespace

unsigned int Integer::getTypeId() const
{
    return 504;
}

String Integer::getTypeName() const
{
    return "Integer";
}

String Integer::toXML(char const* tag) const
{
    return tag ? String::fromFormat("<%s>%d</%s>", tag, value, tag) : String();
}

bool Integer::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    value = element.getValue().toInteger();
    return true;
}

unsigned int Integer::getBinLength() const
{
    return 4;
}

unsigned int Integer::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.i32(value);
    return writer.written();
}

unsigned int Integer::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    value = reader.i32();
    return reader.position();
}

bool checkBit(Integer const& value, unsigned short bit)
{
    return (static_cast<uint32_t>(value.value) & maskOf(bit)) != 0;
}

void setBit(Integer& value, unsigned short bit, bool on)
{
    uint32_t const others = static_cast<uint32_t>(value.value) & ~maskOf(bit);
    value.value = static_cast<int32_t>(on ? others | maskOf(bit) : others);
}

} // namespace rktl
