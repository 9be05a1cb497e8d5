#pragma once

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemberRecord.h"

/// A named set of camera addresses. It has a binary and an XML form, but stands in no file and in no stream of objects, so it
/// is no rksl::Serializable. A plain value; pointers into it are good until an address is added or removed.
///
/// Binary form: addresses, name, settings. XML form: <tag name="..." settings="...">addresses</tag>; name only when it is
/// not empty, settings only when not 0.
class CameraGroup {
public:
    CameraGroup() = default;
    explicit CameraGroup(rktl::String const& name)
        : mName(name)
    {
    }
    virtual ~CameraGroup() = default;
    CameraGroup(CameraGroup const&) = default;
    CameraGroup& operator=(CameraGroup const&) = default;

    virtual unsigned int getTypeId() const;
    virtual rktl::String getTypeName() const;
    virtual rktl::String toXML() const;
    virtual rktl::String toXML(char const* tag) const; ///< null gives an empty text
    /// False, and as before, when xml holds no element; children that are no addresses are skipped.
    virtual bool fromXML(char const* xml);
    virtual unsigned int getBinLength() const;
    virtual unsigned int toBin(unsigned char* out) const;
    /// Throws rktl::Exception for bytes that are no group, which is then partly filled.
    virtual unsigned int fromBin(unsigned char const* in, unsigned int length);
    /// The members in wire order; none has an XML element of its own.
    virtual void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named);

    rktl::String const& getName() const { return mName; }
    void setName(rktl::String const& name) { mName = name; }
    int32_t getSettings() const { return mSettings; }
    void setSettings(int32_t settings) { mSettings = settings; }
    rksl::List<MeridaneAddress> const& getAddresses() const { return mAddresses; }

    /// The entry of that camera, added when it is not there yet; null for an address that is not valid.
    MeridaneAddress* add(MeridaneAddress const& address);
    /// Removes the entry of that camera; false when there is none.
    bool remove(MeridaneAddress const& address);
    /// The first entry that is the same as far as level says (MeridaneAddress::compare), or null.
    MeridaneAddress* find(MeridaneAddress const& address, int level);
    bool exists(MeridaneAddress const& address, int level) const;

    /// Same name, and as far as level says the same addresses in the same order.
    bool compare(CameraGroup const& other, int level) const;

private:
    rksl::MemberList members() const;

    rksl::List<MeridaneAddress> mAddresses;
    rktl::String mName;
    rktl::Integer mSettings = 0;
};
