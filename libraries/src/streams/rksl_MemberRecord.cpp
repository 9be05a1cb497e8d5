#include "streams/rksl_MemberRecord.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_String.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rksl_XmlChildren.h"

namespace rksl {

rktl::String MemberRecord::toXML(char const* tag) const
{
    Members const members = membersWithXml("toXML() - Not implemented");
    if (!tag)
        return {};
    rktl::String xml("<" + std::string(tag) + ">");
    for (auto const& [name, member] : members.named)
        if (member)
            xml += member->toXML(name.c_str());
    xml += "</" + std::string(tag) + ">";
    return xml;
}

bool MemberRecord::fromXML(char const* xml)
{
    Members const members = membersWithXml("fromXML() - Not implemented");
    auto const children = readXmlChildren(xml);
    if (!children || children->empty())
        return false;
    for (XmlChild const& child : *children) {
        auto const member = members.named.find(child.name);
        if (member != members.named.end() && member->second)
            member->second->fromXML(child.xml.c_str());
    }
    return true;
}

unsigned int MemberRecord::getBinLength() const
{
    unsigned int length = 0;
    for (Serializable const* member : members().list)
        length += member->getBinLength();
    return length;
}

unsigned int MemberRecord::toBin(unsigned char* out) const
{
    ByteWriter writer(out);
    for (Serializable const* member : members().list)
        writer.record(*member);
    return writer.written();
}

unsigned int MemberRecord::fromBin(unsigned char const* in, unsigned int length)
{
    ByteReader reader(in, length);
    for (Serializable* member : members().list)
        reader.record(*member);
    return reader.position();
}

MemberRecord::Members MemberRecord::members() const
{
    Members members;
    // The const operations only read through these pointers.
    const_cast<MemberRecord*>(this)->fillSerializable(members.list, members.named);
    return members;
}

MemberRecord::Members MemberRecord::membersWithXml(char const* refusal) const
{
    Members all = members();
    if (all.list.size() != all.named.size())
        throw rktl::Exception("libraries/src/streams/rksl_MemberRecord", getClassName(), refusal);
    return all;
}

} // namespace rksl
