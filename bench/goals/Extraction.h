#pragma once

#include "detection/rk_background.h"
#include "detection/rk_detection.h"

#include <cstdint>

/// The pixel work of a gray frame, as SimpleTracker does it with its usual settings, one stage at a time.
class Extraction {
public:
    Extraction(uint32_t width, uint32_t height);
    ~Extraction();
    Extraction(Extraction const&) = delete;
    Extraction& operator=(Extraction const&) = delete;

    void detectMotion(rk_image const& frame);
    void compare(rk_image const& frame);
    void threshold();
    void closeAndOpen();
    void label();
    void learn(rk_image const& frame);

    rk_image& foreground() { return mForeground; }
    rk_detection& detection() { return mDetection; }

private:
    rk_background mBackground = {};
    rk_detection mDetection = {};
    rk_image mStrength = {}, mForeground = {}, mScratch = {}, mMotion = {}, mEverywhere = {};
    unsigned char mTable[256];
};
