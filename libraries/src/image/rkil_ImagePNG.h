#pragma once

#include "image/rk_image.h"
#include "image/rkil_BasicImage.h"

namespace rkil {

/// The place for a lossless codec. None stands behind it: it holds nothing, and every operation does nothing and gives 0.
/// There is no XML form.
class ImagePNG : public BasicImage {
public:
    bool init() { return false; }
    bool toFlatImage(rk_image&) const { return false; }
    bool fromFlatImage(rk_image const&) { return false; }

    bool resize(unsigned int, unsigned int) override { return false; }
    void clear() override { }

    unsigned int getTypeId() const override { return 707; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    /// Throws rktl::Exception, as does fromXML.
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override { return 0; }
    unsigned int toBin(unsigned char*) const override { return 0; }
    unsigned int fromBin(unsigned char const*, unsigned int) override { return 0; }
    bool toFile(char const*) const override { return false; }
    bool fromFile(char const*) override { return false; }
};

} // namespace rkil
