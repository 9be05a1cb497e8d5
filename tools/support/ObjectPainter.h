#pragma once

#include "BaseClasses/Object.h"
#include "support/Drawing.h"

#include <optional>
#include <string>
#include <vector>

namespace tools {

/// Centres of an object's boxes, oldest first, in pixels of the frame.
struct ObjectPath {
    std::vector<Spot> spots;
    size_t window = 0; ///< index of the first spot that counts as recent

    /// window: how far back "recent" goes from the newest box; unset: all of it.
    ObjectPath(Object const& object, std::optional<rktl::ElapsedTime> window);

    Spot recent() const { return spots[window]; }
};

/// " human 94%", the class of which the object is the surest, for behind its id; "" while there is none.
std::string classText(Object const& object);

/// Draws objects on a picture of their frame that was enlarged by a whole number.
class ObjectPainter {
public:
    static constexpr uint32_t TEXT_SCALE = 2;

    /// image: is drawn on; outlives this.
    ObjectPainter(RgbImage& image, uint32_t scale)
        : mImage(image)
        , mScale(scale)
    {
    }

    /// Where in the picture a spot of the frame is.
    Spot at(Spot frame) const { return {frame.x * mScale, frame.y * mScale}; }

    /// The recent part is the bolder one. path: not empty.
    void path(ObjectPath const& path);

    /// A frame around what the box covers, with its label on a tag above it or, where there is no room, below.
    void box(rkml::BoundingBox<int> const& box, std::string const& label, Rgb colour);

private:
    void line(std::vector<Spot> const& spots, size_t first, double thickness, Rgb colour);

    RgbImage& mImage;
    uint32_t const mScale;
};

/// How much to enlarge a picture of that size, neither side 0, for drawings and their text. Tall ones are not made any larger.
uint32_t drawingScale(uint32_t width, uint32_t height);

} // namespace tools
