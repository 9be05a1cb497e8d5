#pragma once

#include "streams/rksl_Serializable.h"

namespace rkil {

/// Base of every image class.
class ImageBase : public rksl::Serializable {
public:
    virtual unsigned int getWidth() const = 0;  ///< pixels
    virtual unsigned int getHeight() const = 0; ///< pixels

    /// False when there is no memory, or when the class takes its size from its picture only.
    virtual bool resize(unsigned int width, unsigned int height) = 0;

    /// True when there is no picture.
    virtual bool empty() const = 0;

    /// Releases the picture.
    virtual void clear() = 0;

    /// True when width and height of both agree.
    virtual bool checkResolution(ImageBase const& other) const;
};

} // namespace rkil
