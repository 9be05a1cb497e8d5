#include "misc/rktl_Double.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <cstdlib>

namespace rktl {

String Double::toString(unsigned int decimals) const
{
    return String::fromFormat("%.*f", static_cast<int>(decimals), value);
}

unsigned int Double::getTypeId() const
{
    return 505;
}

String Double::getTypeName() const
{
    return "Double";
}

String Double::toXML(char const* tag) const
{
    return tag ? String::fromFormat("<%s>%g</%s>", tag, value, tag) : String();
}

String Double::toXML(char const* tag, unsigned short decimals) const
{
    return tag ? String::fromFormat("<%s>%.*f</%s>", tag, static_cast<int>(decimals), value, tag) : String();
}

bool Double::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    value = strtod(element.getValue().c_str(), nullptr);
    return true;
}

unsigned int Double::getBinLength() const
{
    return 8;
}

unsigned int Double::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.f64(value);
    return writer.written();
}

unsigned int Double::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    value = reader.f64();
    return reader.position();
}

} // namespace rktl
