#pragma once

#include "camera/sources/Picture.h"

#include <cstdint>

namespace camera {

/// Rows of the street, 640 x 480, on which its traffic moves.
inline constexpr int32_t STREET_WIDTH = 640;
inline constexpr int32_t STREET_HEIGHT = 480;
inline constexpr int32_t STREET_LANES = 4;
inline constexpr int32_t STREET_FAR_PAVEMENT = 147; // where feet stand
inline constexpr int32_t STREET_NEAR_PAVEMENT = 446;

/// Row on which the wheels of a lane stand; lane 0 is the farthest.
constexpr int32_t streetLaneBottom(int32_t lane)
{
    return 207 + 61 * lane;
}

/// The still pictures in front of which scenes play, without noise. twoWay: with a centre line.
void paintStreet(Picture& picture, bool twoWay);
void paintGate(Picture& picture);    // 160 x 120
void paintPlaza(Picture& picture);   // 320 x 240
void paintCarPark(Picture& picture); // 320 x 240

} // namespace camera
