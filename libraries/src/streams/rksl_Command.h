#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_SmartPtr.h"
#include "misc/rktl_String.h"
#include "misc/rktl_UUID.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_StringMap.h"

namespace rktl {
class url;
}

namespace rksl {

/// A request of the object protocol. Every kind of command is this record on the wire, told apart by type (the family) and sub
/// type (the operation); its arguments ride as objects in a stream. The answer is a rksl::Result with the same id.
///
/// Copies share the object stream, which is not synchronised: a command and its copies belong to one thread at a time.
/// Binary form: id, url, type, sub type, objects, timeout. There is no XML form. Errors are rktl::Exception.
class Command : public Serializable {
public:
    static constexpr unsigned int typeId = 13;

    Command();
    /// With a new id, made of the time.
    Command(rktl::String const& url, unsigned int type, unsigned int subType);
    Command(rktl::UUID const& id, rktl::String const& url, unsigned int type, unsigned int subType);
    Command(Command const&) = default;
    Command& operator=(Command const&) = default;

    /// -1: none.
    int32_t getCommandType() const { return mType; }
    /// The operation within the family.
    unsigned int getCommandSubType() const { return static_cast<unsigned int>(mSubType) & 0xFF; }
    /// Whether whoever carries the command out is to note it for an audit; travels in bit 8 of the sub type.
    bool getAudit() const;
    void setAudit(bool audit);

    rktl::UUID const& getID() const { return mID; }

    /// What is commanded, as text.
    rktl::String const& getURL() const { return mURL; }
    /// False, and as before, for a url without a scheme.
    bool setURL(rktl::url const& url);

    /// The arguments, shared with copies.
    rktl::SmartPtr<MemIOStream> const& getObjectStream() const { return mObjects; }
    void setObjectStream(rktl::SmartPtr<MemIOStream> const& objects) { mObjects = objects; }

    /// How long the sender waits for the answer.
    rktl::ElapsedTime const& getTimeout() const { return mTimeout; }
    void setTimeout(rktl::ElapsedTime const& timeout) { mTimeout = timeout; }

    virtual rktl::String getCommandName() const;
    virtual rktl::String getCommandSubName(unsigned int subType) const;
    /// Name and name of the sub type.
    virtual rktl::String getCommandString() const;
    /// What an audit notes; "" for nothing.
    virtual rktl::String getCommandDescription() const;
    /// Adds what an audit keeps besides.
    virtual void getCommandAttributes(StringMap<rktl::String>& attributes) const;

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override; ///< throws
    bool fromXML(char const* xml) override;             ///< throws
    unsigned int getBinLength() const override;
    /// Throws for a command that no server could take: without an id, a url with a scheme, a type or a sub type.
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    void checkObjects() const;

    rktl::Integer mType = -1;
    rktl::String mURL;
    rktl::SmartPtr<MemIOStream> mObjects;
    rktl::Integer mSubType = -1; // with the audit flag
    rktl::UUID mID;
    rktl::ElapsedTime mTimeout;
};

} // namespace rksl
