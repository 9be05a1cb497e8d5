#include "video/rkvl_Resolution.h"

#include "math/rkml_Coordinate.h"
#include "misc/rk_portability.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace rkvl {

namespace {

struct NamedSize {
    char const* name;
    char const* size;
};

constexpr NamedSize NAMED_SIZES[] = {
    {"QCIF", "176x144"}, {"CIF", "352x288"}, {"4CIF", "704x576"}, {"720p", "1280x720"}, {"1080p", "1920x1080"}};

// Moves text behind a number, held to 32 bits. False without one.
bool readNumber(char const*& text, int32_t& number)
{
    using Limits = std::numeric_limits<int32_t>;
    char* behind = nullptr;
    number = static_cast<int32_t>(std::clamp<long long>(std::strtoll(text, &behind, 10), Limits::min(), Limits::max()));
    bool const found = behind != text;
    text = behind;
    return found;
}

bool readSize(char const* text, Resolution& size)
{
    int32_t width = 0;
    int32_t height = 0;
    if (!readNumber(text, width))
        return false;
    while (std::isspace(static_cast<unsigned char>(*text)))
        ++text;
    if (*text++ != 'x' || !readNumber(text, height))
        return false;
    size.width = width;
    size.height = height;
    return true;
}

} // namespace

bool Resolution::fromString(rktl::String const& size)
{
    if (readSize(size.c_str(), *this))
        return true;
    auto const known = std::find_if(std::begin(NAMED_SIZES), std::end(NAMED_SIZES),
        [&](NamedSize const& named) { return rk_stricmp(named.name, size.c_str()) == 0; });
    return known != std::end(NAMED_SIZES) && readSize(known->size, *this);
}

rktl::String Resolution::toNameString() const
{
    rktl::String const size = rktl::String::fromFormat("%dx%d", width.value, height.value);
    for (NamedSize const& named : NAMED_SIZES)
        if (size == named.size)
            return named.name;
    return size;
}

Resolution Resolution::getMax(Resolution const& other) const
{
    Resolution const none;
    if (*this == none || other == none)
        return none;
    return {std::max(width.value, other.width.value), std::max(height.value, other.height.value)};
}

Resolution Resolution::scale(Resolution const& bound) const
{
    if (bound.width <= 0 || bound.height <= 0 || bound == *this)
        return *this;
    float const ratio = static_cast<float>(width.value) / static_cast<float>(height.value);
    float const scaledHeight = static_cast<float>(bound.width.value) / ratio;
    if (scaledHeight > static_cast<float>(bound.height.value))
        return {rkml::coordinateCast<int32_t>(ratio * static_cast<float>(bound.height.value)), bound.height};
    return {bound.width, rkml::coordinateCast<int32_t>(scaledHeight)};
}

std::strong_ordering Resolution::operator<=>(Resolution const& other) const
{
    auto const widths = width.value <=> other.width.value;
    return widths != 0 ? widths : height.value <=> other.height.value;
}

unsigned int Resolution::getTypeId() const
{
    return 815;
}

rktl::String Resolution::getTypeName() const
{
    return "Resolution";
}

void Resolution::fillSerializable(rksl::MemberList& list, rksl::NamedMembers&)
{
    list.push_back(&width);
    list.push_back(&height);
}

char const* Resolution::getClassName() const
{
    return "rkvl::Resolution";
}

} // namespace rkvl
