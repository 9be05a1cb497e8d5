#include "trackers/SvmClassification/ClassificationModel.h"

#include "misc/rktl_Exception.h"
#include "security/rkcl_Base64.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <vector>

namespace {

/// Takes the Base64 text of a stream. False when it is no chain of frames.
bool decode(rktl::String const& text, rksl::MemIOStream& data)
try {
    std::vector<unsigned char> bytes(rkcl::base64::decodeSize(static_cast<unsigned int>(text.size())));
    unsigned int const size = bytes.empty() ? 0 : rkcl::base64::decode(bytes.data(), text);
    data.setBuffer(bytes.data(), size);
    return size > 0 && data.validate();
} catch (rktl::Exception const&) {
    return false;
}

} // namespace

ClassificationModel::ClassificationModel(char const* type)
    : mType(type)
{
}

ClassificationModel::ClassificationModel(
    char const* type, rktl::String const& name, unsigned char const* bytes, unsigned int size)
    : mData(bytes, size)
    , mName(name)
    , mType(type)
    , mValid(bytes != nullptr)
{
}

ClassificationModel::ClassificationModel(char const* type, rktl::String const& name, rksl::Serializable const& model, bool valid)
    : mName(name)
    , mType(type)
    , mValid(valid)
{
    mData.write(model);
}

rktl::String ClassificationModel::getTypeName() const
{
    return "ClassificationModel";
}

rktl::String ClassificationModel::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    rktl::String const head =
        "<" + name + " name=\"" + rktl::String::encodeHtml(mName) + "\" type=\"" + rktl::String::encodeHtml(mType) + "\"";
    if (!mValid)
        return head + " />";
    unsigned char const* bytes = nullptr;
    unsigned int size = 0;
    mData.getBuffer(bytes, size);
    return head + ">" + rkcl::base64::encode(bytes, size) + "</" + name + ">";
}

bool ClassificationModel::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd() || !element.hasAttribute("name") || !element.hasAttribute("type"))
        return false;
    mData.clear();
    mName = element.getAttribute("name");
    mType = element.getAttribute("type");
    mValid = element.hasValue() && decode(element.getValue(), mData);
    return true;
}

unsigned int ClassificationModel::getBinLength() const
{
    return mName.getBinLength() + mType.getBinLength() + mData.getBinLength() + 1;
}

unsigned int ClassificationModel::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.record(mName);
    writer.record(mType);
    writer.record(mData);
    writer.u8(mValid);
    return writer.written();
}

unsigned int ClassificationModel::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    reader.record(mName);
    reader.record(mType);
    reader.record(mData);
    mValid = reader.u8() != 0;
    return reader.position();
}
