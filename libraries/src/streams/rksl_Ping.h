#pragma once

#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_MemberRecord.h"

namespace rksl {

/// A client's question whether the server is there. The server answers with a heartbeat.
class Ping : public MemberRecord {
public:
    static constexpr unsigned int typeId = 35;

    rktl::TimeStamp timestamp; ///< when it was sent, on the sender's clock

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    void fillSerializable(MemberList& list, NamedMembers& named) override;

protected:
    char const* getClassName() const override { return "rksl::Ping"; }
};

} // namespace rksl
