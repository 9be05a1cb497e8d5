#pragma once

#include "camera/sources/FrameSource.h"
#include "camera/sources/Scene.h"

namespace camera {

/// A built-in scene, from its beginning to its end.
class SceneSource final : public FrameSource {
public:
    /// Throws SourceError for an unknown name.
    SceneSource(std::string const& name, FrameRate rate);

    uint32_t width() const override { return mScene.width(); }
    uint32_t height() const override { return mScene.height(); }
    bool advance() override;
    int64_t time() const override { return mRate.time(mFrames - 1); }
    std::optional<int64_t> duration() const override { return mScene.duration(); }
    void picture(Picture& picture) override { mScene.draw(time(), mFrames - 1, picture); }

private:
    Scene const mScene;
    FrameRate const mRate;
    uint64_t mFrames = 0; // begun so far
};

} // namespace camera
