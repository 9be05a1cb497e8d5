#pragma once

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_MemberRecord.h"
#include "streams/rksl_Set.h"
#include "video/rkvl_Resolution.h"

/// Which frames a client wants to get. Binary form: the members in their order. A plain value.
class FrameRequest : public rksl::MemberRecord {
public:
    static constexpr unsigned int typeId = 2;

    rktl::Integer tracks = 0;           ///< other than 0: frames carry the objects with their tracks
    rktl::Integer fps = 0;              ///< frames per second; 0: all
    rksl::Set<rktl::String> imageTypes; ///< names of the images that frames carry
    rkvl::Resolution resolution;        ///< wanted size; has no effect

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

protected:
    char const* getClassName() const override { return "FrameRequest"; }
};
