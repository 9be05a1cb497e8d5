#pragma once

#include "misc/rktl_Attributes.h"
#include "misc/rktl_String.h"
#include "streams/rksl_MemberRecord.h"

namespace rktl {

/// What is known of a resource, such as a video source: a name for people, where it is, and free-form attributes.
/// Binary form: name, URL, attributes.
class ResourceInfo : public rksl::MemberRecord, public Attributes {
public:
    String const& getFriendlyName() const { return mFriendlyName; }
    void setFriendlyName(String const& name) { mFriendlyName = name; }
    String const& getURL() const { return mURL; }
    void setURL(String const& url) { mURL = url; }

    unsigned int getTypeId() const override;
    String getTypeName() const override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

protected:
    char const* getClassName() const override;

private:
    String mFriendlyName;
    String mURL;
};

} // namespace rktl
