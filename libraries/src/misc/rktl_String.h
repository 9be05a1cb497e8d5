#pragma once

#include "streams/rksl_Serializable.h"

#include <cstdarg>
#include <string>
#include <string_view>

namespace rktl {

/// Text as bytes, with no encoding assumed, that can serialise itself. All operations of the standard string are at hand.
class String : public std::string, public rksl::Serializable
{
public:
    String() = default;
    String(char const* text); ///< null gives the empty text
    String(char const* text, size_t length);
    String(std::string const& text);
    String(std::string&& text);
    explicit String(std::string_view text);
    String(size_t count, char fill);

    unsigned int getTypeId() const override;
    String getTypeName() const override;
    using rksl::Serializable::toXML;
    String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;
    bool toFile(char const* path) const override;
    bool fromFile(char const* path) override;
};

} // namespace rktl
