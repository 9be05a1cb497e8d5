#include "streams/rksl_Result.h"

#include "misc/rk_clock.h"
#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_Command.h"
#include "streams/rksl_EndOfFile.h"
#include "streams/rksl_IStream.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_Wait.h"

namespace rksl {

Result::Result(int code, rktl::String const& message)
    : mCode(code)
    , mMessage(message)
{
}

Result::Result(Command const& command, int code, rktl::String const& message)
    : mCode(code)
    , mCommandID(command.getID())
    , mMessage(message)
{
}

void Result::setResult(Command const& command, int code, rktl::String const& message)
{
    mCode = code;
    mCommandID = command.getID();
    mMessage = message;
}

void Result::setCommand(Command const& command)
{
    mCommandID = command.getID();
}

bool Result::setObject(Serializable const& object)
{
    mObjects.purge();
    return addObject(object);
}

bool Result::addObject(Serializable const& object)
try {
    mObjects.write(object);
    return true;
} catch (std::exception const&) {
    return false;
}

bool Result::peek(Serializable& object) const
try {
    mObjects.peek(object);
    return true;
} catch (std::exception const&) {
    return false;
}

unsigned int Result::peekType() const
{
    return mObjects.isEmpty() ? 0 : mObjects.getNextType();
}

rktl::String Result::codeToString(int code)
{
    switch (code) {
    case canceled:
        return "Canceled";
    case notAuthorized:
        return "Not Authorized";
    case unsupported:
        return "Unsupported";
    case unknown:
        return "Unknown";
    case timeout:
        return "Timeout";
    case failure:
        return "Failure";
    case success:
        return "Success";
    case warning:
        return "Warning";
    case asynchronous:
        return "Asynchronous";
    default:
        return "";
    }
}

bool Result::waitForResult(
    IStream& stream, rktl::ElapsedTime const& limit, Command const& command, Result& result, Callback callback, void* context)
{
    uint32_t const start = rk_tickcount();
    uint32_t const milliseconds = rkst::Deadline::toLimit(limit);
    for (;;) {
        if (milliseconds != rkst::Deadline::noLimit && rk_tickcount() - start >= milliseconds) {
            result.setResult(command, timeout, "Timeout");
            return false;
        }
        if (stream.isEmpty()) {
            rkst::Wait(1);
            continue;
        }
        unsigned int const type = stream.getNextType();
        if (type == EndOfFile::typeId) {
            result.setResult(command, failure, "EOF Received");
            return false;
        }
        if (type == typeId) {
            stream.read(result);
            if (!command.getID().isValid() || command.getID() == result.getCommandID())
                return result.getCode() >= 0;
        } else if (!callback || !callback(static_cast<unsigned short>(type), context, stream)) {
            stream.skip();
        }
    }
}

rktl::String Result::getTypeName() const
{
    return "rksl_Result";
}

void Result::fillSerializable(MemberList& list, NamedMembers&)
{
    list = {&mCode, &mCommandID, &mMessage, &mObjects};
}

} // namespace rksl
