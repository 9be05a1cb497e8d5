#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"

namespace rktl {

/// A double that can serialise itself. It compares and computes as the number that it holds.
class Double : public rksl::Serializable {
public:
    Double(double number = 0.0)
        : value(number)
    {
    }
    operator double() const { return value; }

    /// Fixed notation with that many digits behind the point.
    String toString(unsigned int decimals) const;

    /// Binary form: 8 bytes. XML form: six significant digits, or fixed notation with that many decimals; text that is no
    /// number reads as 0.
    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    String toXML(char const* tag, unsigned short decimals) const;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    double value;
};

} // namespace rktl
