#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"

#include <cstdint>

namespace rktl {

/// A signed 32-bit number that can serialise itself. It compares and computes as the number that it holds.
class Integer : public rksl::Serializable {
public:
    Integer(int32_t number = 0)
        : value(number)
    {
    }
    operator int32_t() const { return value; }

    /// Binary form: 4 bytes. XML form: the decimal number; text that is no number reads as 0.
    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    int32_t value;
};

/// bit: 0 to 31, 0 the lowest. Bits above that are never set and setting them has no effect.
bool checkBit(Integer const& value, unsigned short bit);
void setBit(Integer& value, unsigned short bit, bool on);

} // namespace rktl
