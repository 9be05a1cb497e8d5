#pragma once

#include "misc/rktl_Buffer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"

#include <array>
#include <compare>

namespace rktl {

/// An identifier of 16 bytes, as in RFC 4122. Ordered by bytes from first to last, unsigned.
class UUID : public rksl::Serializable {
public:
    UUID() = default; ///< all zero

    /// All zero when generate is false; random is then of no account.
    UUID(bool generate, bool random);

    /// The random form, or the one made of the time and the machine.
    void generate(bool random);

    /// Any byte is not 0.
    bool isValid() const;

    /// 8, 4, 4, 4 and 12 lower-case hex digits with "-" between.
    String toString() const;

    /// Reads that form, in either case; text behind it is of no account. False when a digit or a "-" is missing; nothing
    /// changes then.
    bool fromString(String const& text);

    Buffer toBuffer() const;

    bool operator==(UUID const& other) const { return mBytes == other.mBytes; }
    std::strong_ordering operator<=>(UUID const& other) const { return mBytes <=> other.mBytes; }

    /// Binary form: the 16 bytes. XML form: the text form.
    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    std::array<unsigned char, 16> mBytes{};
};

} // namespace rktl
