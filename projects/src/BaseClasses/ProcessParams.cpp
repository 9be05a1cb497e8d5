#include "BaseClasses/ProcessParams.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

ProcessParams::ProcessParams(rktl::String const& type)
    : mType(type)
    , mName(type)
{
}

ProcessParams::ProcessParams(ProcessParams const& other)
    : rksl::Serializable(other)
    , mEnabled(other.mEnabled)
    , mMode(other.mMode)
    , mType(other.mType)
    , mName(other.mName)
    , mBinary(other.binSerialize())
    , mXml(other.xmlSerialize())
{
}

ProcessParams& ProcessParams::operator=(ProcessParams const& other)
{
    if (this == &other)
        return *this;
    mEnabled = other.mEnabled;
    mMode = other.mMode;
    mType = other.mType;
    mName = other.mName;
    mBinary = other.binSerialize();
    mXml = other.xmlSerialize();
    return *this;
}

unsigned int ProcessParams::getTypeId() const
{
    return 37;
}

rktl::String ProcessParams::getTypeName() const
{
    return "ProcessParams";
}

rktl::String ProcessParams::toXML() const
{
    return toXML("ProcessParams");
}

rktl::String ProcessParams::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String xml = "<" + mType + (mEnabled ? " enabled=\"true\"" : " enabled=\"false\"");
    if (mName != mType)
        xml += " name=\"" + rktl::String::encodeHtml(mName) + "\"";
    if (!mMode.empty())
        xml += " mode=\"" + rktl::String::encodeHtml(mMode) + "\"";
    rktl::String const fields = xmlSerialize();
    xml += fields.empty() ? rktl::String("/>") : rktl::String(">" + fields + "</" + mType + ">");
    return xml;
}

bool ProcessParams::fromXML(char const* xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd() || cursor.getName().empty())
        return false;
    mType = cursor.getName();
    mName = cursor.hasAttribute("name") ? cursor.getAttribute("name") : mType;
    mEnabled = cursor.getAttribute("enabled") == "true";
    if (cursor.hasAttribute("mode"))
        mMode = cursor.getAttribute("mode");
    mXml.clear();
    if (cursor.hasChildren())
        for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
            mXml += cursor.toXML();
    return xmlUnserialize(mXml);
}

unsigned int ProcessParams::getBinLength() const
{
    return 1 + mMode.getBinLength() + mType.getBinLength() + mName.getBinLength() + binSerialize().getBinLength() +
        xmlSerialize().getBinLength();
}

unsigned int ProcessParams::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u8(mEnabled ? 1 : 0);
    writer.record(mMode);
    writer.record(mType);
    writer.record(mName);
    writer.record(binSerialize());
    writer.record(xmlSerialize());
    return writer.written();
}

unsigned int ProcessParams::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    mEnabled = reader.u8() != 0;
    reader.record(mMode);
    reader.record(mType);
    reader.record(mName);
    reader.record(mBinary);
    reader.record(mXml);
    if (!binUnserialize(mBinary))
        xmlUnserialize(mXml);
    return reader.position();
}

rksl::MemIOStream ProcessParams::binSerialize() const
{
    return mBinary;
}

bool ProcessParams::binUnserialize(rksl::MemIOStream const&)
{
    return true;
}

rktl::String ProcessParams::xmlSerialize() const
{
    return mXml;
}

bool ProcessParams::xmlUnserialize(rktl::String const&)
{
    return true;
}

bool ProcessParams::assignFrom(ProcessParams const& params)
{
    ProcessParams::operator=(params);
    return (mBinary.size() > 0 && binUnserialize(mBinary)) || xmlUnserialize(mXml);
}
