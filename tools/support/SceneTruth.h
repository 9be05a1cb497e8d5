#pragma once

#include "camera/sources/FrameRate.h"
#include "camera/sources/Scene.h"

#include <nlohmann/json.hpp>

#include <string>

namespace tools {

/// What is known of a built-in scene, for whoever checks what the analysis made of it:
///
///   scene, width, height, fps, duration_ms
///   objects  one for each that is ever seen: id, kind, heading (degrees in the picture plane, 0 right, 90 up), speed (pixels a
///            second), wrong_way, first_frame, last_frame, first_ms, last_ms (of the frames in which it is seen)
///   frames   one for each frame: frame (from 0), time_ms, objects: id, kind, box [x, y, width, height] (the part inside the
///            picture, without the shadow; what is hidden behind others counts as seen), heading
nlohmann::ordered_json sceneTruth(std::string const& name, camera::Scene const& scene, camera::FrameRate rate);

} // namespace tools
