#include "camera/sources/FrameSource.h"

#include "camera/sources/SceneSource.h"
#include "camera/sources/Y4mSource.h"
#ifdef CONTRAFLOW_FFMPEG
#include "camera/sources/FfmpegSource.h"
#endif

namespace camera {

std::unique_ptr<FrameSource> openSource(std::string const& text, std::optional<FrameRate> rate)
{
    std::string const scene = "scene:";
    if (text.starts_with(scene))
        return std::make_unique<SceneSource>(text.substr(scene.size()), rate.value_or(FrameRate()));
    if (text.ends_with(".y4m"))
        return Y4mSource::openFile(text, rate);
#ifdef CONTRAFLOW_FFMPEG
    return std::make_unique<FfmpegSource>(text, rate);
#else
    throw SourceError(
        text + ": neither scene:NAME nor a .y4m file, and this build reads no other video (it was made without FFmpeg)");
#endif
}

} // namespace camera
