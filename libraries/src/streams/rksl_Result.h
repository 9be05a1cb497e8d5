#pragma once

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "misc/rktl_UUID.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_MemberRecord.h"

namespace rktl {
class ElapsedTime;
}

namespace rksl {

class Command;
class IStream;

/// The answer to a rksl::Command: a code, a message for people, and objects. Below 0 the command failed. Binary form: code,
/// command id, message, objects. There is no XML form.
class Result : public MemberRecord {
public:
    static constexpr unsigned int typeId = 12;

    enum Code : int32_t {
        canceled = -6,
        notAuthorized = -5,
        unsupported = -4,
        unknown = -3,
        timeout = -2,
        failure = -1, ///< also an end of file seen while waiting
        success = 0,
        warning = 1,      ///< succeeded with a remark
        asynchronous = 2, ///< accepted; the outcome comes later
    };

    Result() = default;
    Result(int code, rktl::String const& message);
    Result(Command const& command, int code, rktl::String const& message);

    int32_t getCode() const { return mCode; }
    rktl::UUID const& getCommandID() const { return mCommandID; }
    rktl::String const& getMessage() const { return mMessage; }

    void setCode(int code) { mCode = code; }
    void setMessage(rktl::String const& message) { mMessage = message; }
    void setResult(Command const& command, int code, rktl::String const& message);
    /// Answers this command; the rest stays.
    void setCommand(Command const& command);

    // ---- Objects: false where the stream refuses ----

    /// In place of all that are there.
    bool setObject(Serializable const& object);
    bool addObject(Serializable const& object);
    /// Reads the first one, which stays.
    bool peek(Serializable& object) const;
    /// Type id of the first one; 0 when there is none.
    unsigned int peekType() const;
    MemIOStream const& getObjects() const { return mObjects; }

    /// "" for a code that is none.
    static rktl::String codeToString(int code);

    /// Called for each object that is no result. True: it took the object off the stream.
    using Callback = bool (*)(unsigned short type, void* context, IStream& stream);

    /// The client's side of a round trip: reads stream until the answer to command comes, handing what comes in between to
    /// callback (null: it is dropped). A command without an id takes the first result. limit: 0xFFFFFFFF ms for none; counts on
    /// rk_tickcount. Returns whether the answer's code is 0 or above. False also when the limit passes (result is then a timeout)
    /// or the stream ends (a failure). Throws what the stream throws.
    static bool waitForResult(IStream& stream, rktl::ElapsedTime const& limit, Command const& command, Result& result,
        Callback callback, void* context);

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    void fillSerializable(MemberList& list, NamedMembers& named) override;

protected:
    char const* getClassName() const override { return "rksl::Result"; }

private:
    rktl::Integer mCode = 0;
    rktl::UUID mCommandID;
    rktl::String mMessage;
    MemIOStream mObjects;
};

} // namespace rksl
