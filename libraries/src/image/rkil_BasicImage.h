#pragma once

#include "image/rkil_ImageBase.h"

#include <cstdint>

namespace rkil {

/// Base of the image classes that keep their size apart from their pixels.
class BasicImage : public ImageBase {
public:
    unsigned int getWidth() const override { return mWidth; }
    unsigned int getHeight() const override { return mHeight; }
    bool empty() const override { return mWidth == 0 || mHeight == 0; }
    void clear() override { mWidth = mHeight = 0; }

protected:
    uint32_t mWidth = 0; // pixels
    uint32_t mHeight = 0;
};

} // namespace rkil
