#include "BaseClasses/CameraGroup.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

namespace {

auto sameAs(MeridaneAddress const& address, int level)
{
    return [&address, level](MeridaneAddress const& entry) { return entry.compare(address, level); };
}

} // namespace

MeridaneAddress* CameraGroup::add(MeridaneAddress const& address)
{
    if (!address.isValid())
        return nullptr;
    if (MeridaneAddress* const known = find(address, MeridaneAddress::cameraLevel))
        return known;
    return &mAddresses.emplace_back(address);
}

bool CameraGroup::remove(MeridaneAddress const& address)
{
    auto const found = std::find_if(mAddresses.begin(), mAddresses.end(), sameAs(address, MeridaneAddress::cameraLevel));
    if (found == mAddresses.end())
        return false;
    mAddresses.erase(found);
    return true;
}

MeridaneAddress* CameraGroup::find(MeridaneAddress const& address, int level)
{
    auto const found = std::find_if(mAddresses.begin(), mAddresses.end(), sameAs(address, level));
    return found != mAddresses.end() ? &*found : nullptr;
}

bool CameraGroup::exists(MeridaneAddress const& address, int level) const
{
    return std::any_of(mAddresses.begin(), mAddresses.end(), sameAs(address, level));
}

bool CameraGroup::compare(CameraGroup const& other, int level) const
{
    return mName == other.mName &&
        std::equal(mAddresses.begin(), mAddresses.end(), other.mAddresses.begin(), other.mAddresses.end(),
            [level](MeridaneAddress const& a, MeridaneAddress const& b) { return a.compare(b, level); });
}

// ---- Stored ----

unsigned int CameraGroup::getTypeId() const
{
    return 21;
}

rktl::String CameraGroup::getTypeName() const
{
    return "CameraGroup";
}

rktl::String CameraGroup::toXML() const
{
    return toXML(getTypeName().c_str());
}

rktl::String CameraGroup::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const element(tag);
    rktl::String xml = "<" + element;
    if (!mName.empty())
        xml += " name=\"" + rktl::String::encodeHtml(mName) + "\"";
    if (mSettings != 0)
        xml += " settings=\"" + rktl::String::fromInteger(mSettings) + "\"";
    xml += ">";
    for (MeridaneAddress const& address : mAddresses)
        xml += address.toXML();
    return xml + "</" + element + ">";
}

bool CameraGroup::fromXML(char const* xml)
{
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd())
        return false;
    mName = root.getAttribute("name");
    mSettings = root.getAttribute("settings").toInteger();
    mAddresses.fromXML(xml);
    return true;
}

unsigned int CameraGroup::getBinLength() const
{
    unsigned int length = 0;
    for (rksl::Serializable const* member : members())
        length += member->getBinLength();
    return length;
}

unsigned int CameraGroup::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    for (rksl::Serializable const* member : members())
        writer.record(*member);
    return writer.written();
}

unsigned int CameraGroup::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    for (rksl::Serializable* member : members())
        reader.record(*member);
    return reader.position();
}

void CameraGroup::fillSerializable(rksl::MemberList& list, rksl::NamedMembers&)
{
    list = {&mAddresses, &mName, &mSettings};
}

rksl::MemberList CameraGroup::members() const
{
    rksl::MemberList list;
    rksl::NamedMembers named;
    // The const operations only read through these pointers.
    const_cast<CameraGroup*>(this)->fillSerializable(list, named);
    return list;
}
