#pragma once

#include "camera/sources/Scene.h"

namespace camera {

/// Scenes to try rules on: one after the other does and does not do what a rule watches for.
Scene makeYard();
Scene makeBench();
Scene makeDoor();
Scene makeAsset();
Scene makePass();
Scene makeSprint();
Scene makeCrowd();

} // namespace camera
