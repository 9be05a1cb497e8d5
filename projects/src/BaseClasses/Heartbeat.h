#pragma once

#include "misc/rktl_Attributes.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_MemberRecord.h"

/// The server's sign of life: sent on connect, periodically, and as the answer to a ping. Binary form: time, version,
/// attributes. Periodic ones tell of the video in the attributes "video-loss", "video-position" and "video-finished".
class Heartbeat : public rksl::MemberRecord, public rktl::Attributes {
public:
    static constexpr unsigned int typeId = 11;
    static constexpr int versionMajor = 6;
    static constexpr int versionMinor = 0; ///< five bits

    Heartbeat() = default;
    explicit Heartbeat(rktl::TimeStamp const& time)
        : timestamp(time)
    {
    }

    rktl::TimeStamp timestamp;                                         ///< of sending
    rktl::Integer version = int32_t(versionMajor << 5 | versionMinor); ///< of the protocol

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

protected:
    char const* getClassName() const override { return "Heartbeat"; }
};
