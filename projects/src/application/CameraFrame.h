#pragma once

#include "image/rk_image.h"

#include <cstdint>

class ProcessFrame;

/// Makes pictures from a camera into frames for the analysis: in colour when they are small and it is day, else in gray.
/// Keeps its buffer from frame to frame. Belongs to one thread.
class CameraFrame {
public:
    static constexpr int32_t colourWidthMax = 192; // pixels

    CameraFrame() = default;
    ~CameraFrame() { rk_free_image(&mColour); }
    CameraFrame(CameraFrame const&) = delete;
    CameraFrame& operator=(CameraFrame const&) = delete;

    /// Gives frame, which has been cleared, its resolution and its "Native Image". bytes: width x height of luma, then a pair
    /// of chroma (blue first) for each 2 x 2 block; read during the call only. Returns whether the frame is in colour.
    /// Without bytes, with a size that is not above 0 or not of this world, or without memory, frame gets no image.
    bool wrap(unsigned char const* bytes, int32_t width, int32_t height, bool isDay, ProcessFrame& frame);

    /// Gives frame its resolution and its "Native Image", a copy: gray (1 channel), or blue, green, red and luma (4 channels).
    static void setNativeImage(rk_image const& image, ProcessFrame& frame);

    /// Times of a frame that has just been taken: the system's, and the milliseconds since the tick of the stream's start.
    static void stamp(ProcessFrame& frame, uint32_t streamStart);

private:
    rk_image mColour = {}; // blue, green, red, luma
};

/// One camera frame, as wrap takes it, into target, which has its size and four channels: blue, green, red, luma.
/// Always true.
bool convertYUV420_NV21toARGB8888(unsigned char const* source, rk_image& target);
