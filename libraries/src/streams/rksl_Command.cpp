#include "streams/rksl_Command.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

namespace rksl {

namespace {

constexpr int64_t defaultTimeout = 15000; // ms
constexpr unsigned short auditBit = 8;

[[noreturn]] void raise(char const* message, unsigned int line = __builtin_LINE())
{
    throw rktl::Exception("libraries/src/streams/rksl_Command", "rksl::Command", message, line);
}

} // namespace

Command::Command()
    : mObjects(new MemIOStream)
    , mTimeout(defaultTimeout)
{
}

Command::Command(rktl::String const& url, unsigned int type, unsigned int subType)
    : Command(rktl::UUID(true, false), url, type, subType)
{
}

Command::Command(rktl::UUID const& id, rktl::String const& url, unsigned int type, unsigned int subType)
    : Command()
{
    mID = id;
    mURL = url;
    mType = static_cast<int32_t>(type);
    mSubType = static_cast<int32_t>(subType);
}

bool Command::getAudit() const
{
    return rktl::checkBit(mSubType, auditBit);
}

void Command::setAudit(bool audit)
{
    rktl::setBit(mSubType, auditBit, audit);
}

bool Command::setURL(rktl::url const& url)
{
    if (url.mScheme.empty())
        return false;
    mURL = url;
    return true;
}

rktl::String Command::getCommandName() const
{
    return rktl::String::fromFormat("rksl::Command(%d)", mType.value);
}

rktl::String Command::getCommandSubName(unsigned int subType) const
{
    return rktl::String::fromFormat("Undefined(%d)", static_cast<int>(subType));
}

rktl::String Command::getCommandString() const
{
    return getCommandName() + "::" + getCommandSubName(getCommandSubType());
}

rktl::String Command::getCommandDescription() const
{
    return "";
}

void Command::getCommandAttributes(StringMap<rktl::String>&) const { }

rktl::String Command::getTypeName() const
{
    return "rksl_Command";
}

rktl::String Command::toXML(char const*) const
{
    raise("toXML - Not Implemented.");
}

bool Command::fromXML(char const*)
{
    raise("fromXML - Not Implemented.");
}

void Command::checkObjects() const
{
    if (!mObjects)
        raise("Object stream cannot be NULL.");
}

unsigned int Command::getBinLength() const
{
    checkObjects();
    return mID.getBinLength() + mURL.getBinLength() + mType.getBinLength() + mSubType.getBinLength() + mObjects->getBinLength() +
        mTimeout.getBinLength();
}

unsigned int Command::toBin(unsigned char* out) const
{
    checkObjects();
    if (!mID.isValid())
        raise("Invalid Command ID");
    if (rktl::url(mURL).mScheme.empty())
        raise("Invalid URL");
    if (mType < 0)
        raise("Invalid Command Type");
    if (mSubType < 0)
        raise("Invalid Command SubType");
    ByteWriter writer(out);
    writer.record(mID);
    writer.record(mURL);
    writer.record(mType);
    writer.record(mSubType);
    writer.record(*mObjects);
    writer.record(mTimeout);
    return writer.written();
}

unsigned int Command::fromBin(unsigned char const* in, unsigned int length)
{
    checkObjects();
    ByteReader reader(in, length);
    reader.record(mID);
    reader.record(mURL);
    reader.record(mType);
    reader.record(mSubType);
    reader.record(*mObjects);
    reader.record(mTimeout);
    return reader.position();
}

} // namespace rksl
