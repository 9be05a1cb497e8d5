#include "support/FrameInput.h"

#include "application/CameraFrame.h"
#include "camera/sources/FrameSource.h"

namespace tools {

namespace {

class VideoInput final : public FrameInput {
public:
    explicit VideoInput(std::string const& text)
        : mSource(camera::openSource(text))
    {
    }

    bool advance() override { return mSource->advance(); }
    int64_t position() const override { return mSource->time(); }
    std::optional<int64_t> length() const override { return mSource->duration(); }

    bool wrap(ProcessFrame& frame) override
    {
        mSource->picture(mPicture);
        return mWrapper.wrap(mPicture.bytes.data(), int32_t(mPicture.width), int32_t(mPicture.height), true, frame);
    }

private:
    std::unique_ptr<camera::FrameSource> mSource;
    camera::Picture mPicture;
    CameraFrame mWrapper;
};

} // namespace

std::unique_ptr<FrameInput> openVideo(std::string const& text)
{
    return std::make_unique<VideoInput>(text);
}

} // namespace tools
