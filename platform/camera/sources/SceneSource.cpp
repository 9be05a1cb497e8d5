#include "camera/sources/SceneSource.h"

namespace camera {

SceneSource::SceneSource(std::string const& name, FrameRate rate)
    : mScene(makeScene(name))
    , mRate(rate)
{
}

bool SceneSource::advance()
{
    if (mRate.time(mFrames) >= mScene.duration())
        return false;
    ++mFrames;
    return true;
}

} // namespace camera
