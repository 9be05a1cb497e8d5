#pragma once

#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_MemberRecord.h"

#include <compare>

namespace rkvl {

/// The size of a picture in pixels. Binary form: width, height. There is no XML form: toXML and fromXML throw.
class Resolution : public rksl::MemberRecord {
public:
    rktl::Integer width = 0;
    rktl::Integer height = 0;
    rktl::String text; // a label for people; neither compared nor stored

    Resolution() = default;
    Resolution(int32_t pixelsWide, int32_t pixelsHigh)
        : width(pixelsWide)
        , height(pixelsHigh)
    {
    }

    /// Reads "1280x720", with blanks around the x or without, or one of the names "QCIF", "CIF", "4CIF", "720p" and "1080p" in
    /// any case. False, and nothing is changed, for any other text.
    bool fromString(rktl::String const& size);

    /// The name of the size where it has one, else "WIDTHxHEIGHT".
    rktl::String toNameString() const;

    /// The larger width and the larger height, each by itself; 0x0 when either size is 0x0.
    Resolution getMax(Resolution const& other) const;

    /// The largest size of this one's proportion inside bound, in single precision, rounded; this size for a bound that is
    /// not above 0 both ways.
    Resolution scale(Resolution const& bound) const;

    /// By width, then height.
    bool operator==(Resolution const& other) const { return (*this <=> other) == 0; }
    std::strong_ordering operator<=>(Resolution const& other) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    void fillSerializable(rksl::MemberList& list, rksl::NamedMembers& named) override;

protected:
    char const* getClassName() const override;
};

} // namespace rkvl
