#pragma once

#include "camera/sources/Picture.h"
#include "camera/sources/SceneFigures.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace camera {

/// From here on an actor moves otherwise.
struct SceneTurn {
    int64_t at = 0;                 // ms of scene time
    int32_t speedX = 0, speedY = 0; // pixels a second
};

/// Something that crosses the scene once, on a straight line at constant speed unless it turns.
struct SceneActor {
    uint32_t id = 0;
    SceneFigure figure; // facing where it goes
    int32_t x = 0;      // left and bottom edge at `start`, pixels
    int32_t bottom = 0;
    int32_t speedX = 0; // pixels a second, down being positive for y
    int32_t speedY = 0;
    int64_t start = 0; // ms of scene time, shown from start to before stop
    int64_t stop = 0;
    std::vector<SceneTurn> turns; // in the order of time
    bool wrongWay = false;        // against the traffic of its lane

    /// Before any turn: degrees in the picture plane, 0 right, 90 up, from 0 to below 360.
    double heading() const;
};

/// Where an actor is at one moment: the part of its box that lies in the picture, its shadow not counted.
struct SceneObject {
    SceneActor const* actor = nullptr;
    int32_t x = 0, y = 0, width = 0, height = 0;
};

/// A change of all light, from start to before stop, in 1/1024 of the scene's own.
struct SceneLight {
    int64_t start = 0;
    int64_t stop = 0;
    int32_t gain = 1024;
};

/// A drawn scene of known contents: backdrop, actors with shadows, slow drift of the light, sensor noise. All in integer
/// arithmetic and from seeded tables, so that every machine draws the same bytes. Const after construction.
class Scene {
public:
    Scene(Picture backdrop, std::vector<SceneActor> actors, std::vector<SceneLight> lights, int64_t duration);

    uint32_t width() const { return mBackdrop.width; }
    uint32_t height() const { return mBackdrop.height; }
    int64_t duration() const { return mDuration; } // ms
    std::vector<SceneActor> const& actors() const { return mActors; }

    /// Light at a moment in 1/1024: drift times changes.
    int32_t gain(int64_t time) const;

    /// What can be seen at a moment, in the order of ids.
    std::vector<SceneObject> objectsAt(int64_t time) const;

    /// Draws the moment `time` (ms); frame picks the noise.
    void draw(int64_t time, uint64_t frame, Picture& picture) const;

private:
    Picture mBackdrop;
    std::vector<SceneActor> mActors; // in the order of ids
    std::vector<size_t> mDrawOrder;  // far ones first
    std::vector<SceneLight> mLights;
    int64_t mDuration;
    std::vector<int8_t> mLumaNoise; // a frame walks it from an offset of its own
    std::vector<int8_t> mChromaNoise;
};

struct SceneName {
    std::string_view name;
    std::string_view about;
};

/// The built-in scenes.
std::vector<SceneName> const& sceneNames();

/// Throws SourceError for a name that is not among them.
Scene makeScene(std::string const& name);

} // namespace camera
