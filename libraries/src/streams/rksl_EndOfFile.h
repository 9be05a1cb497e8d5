#pragma once

#include "streams/rksl_Serializable.h"

namespace rksl {

/// The empty object that marks the end of a stream. Its frame is 01 00 00 00 00 00 00 00.
class EndOfFile : public Serializable {
public:
    static constexpr unsigned int typeId = 1;

    unsigned int getTypeId() const override { return typeId; }
    rktl::String getTypeName() const override;
    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override { return 0; }
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;
};

} // namespace rksl
