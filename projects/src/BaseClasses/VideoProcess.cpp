#include "BaseClasses/VideoProcess.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rktl_Logger.h"
#include "plugin/rkgpu_Exception.h"

#include <cstdarg>

bool VideoProcess::supports(char const* wanted, rkpl::Plugin** result)
{
    return answers<VideoProcess>(this, wanted, result);
}

rktl::String VideoProcess::getProcessSubtype() const
{
    return {};
}

ProcessParams VideoProcess::getDefaultParameters() const
{
    return ProcessParams(getProcessType());
}

void VideoProcess::setLogger(rktl::Logger* logger)
{
    mLogger = logger;
    onSetLogger(logger);
}

void VideoProcess::getSupportedAttributes(rksl::Set<rktl::String>&) const { }

void VideoProcess::getAttributes(rksl::StringMap<rktl::String>&) const { }

void VideoProcess::getSupportedImageTypes(rksl::Set<rktl::String>&) const { }

void VideoProcess::getRequiredImageTypes(rksl::StringMap<rktl::Integer>&) const { }

bool VideoProcess::setProcesses(std::list<rkpl::PluginPtr<VideoProcess>> const&)
{
    return true;
}

void VideoProcess::reserveFrame(ProcessFrame const& frame)
{
    unsigned int const width = frame.getWidth();
    unsigned int const height = frame.getHeight();
    double const scale = frame.getScale();
    if (width == mWidth && height == mHeight && scale == mFrameScale)
        return;
    onFrameResize(width, height, scale);
    mWidth = width;
    mHeight = height;
    mFrameScale = scale;
}

void VideoProcess::dumpStats()
{
    mStats.dump([this](rktl::String const& line) { log(rktl::LogType::Info, line); });
}

bool VideoProcess::processFrame(ProcessFrame& frame)
{
    if (!mEnabled)
        return true;
    try {
        reserveFrame(frame);
        if (onProcessFrame(frame))
            return true;
        int64_t const position = frame.getPosition().toMilliseconds();
        log(rktl::LogType::Error, "Couldn't process frame at %02d:%02d:%02d.%03d.", static_cast<int>(position / 3600000 % 24),
            static_cast<int>(position / 60000 % 60), static_cast<int>(position / 1000 % 60), static_cast<int>(position % 1000));
    } catch (rkgpu::Exception const& exception) {
        throw rkgpu::Exception(exception.what());
    } catch (std::exception const& exception) {
        log(rktl::LogType::Error, rktl::String(mName + " - Caught Exception (resetting process): " + exception.what()));
        resetProcess();
    } catch (...) {
        log(rktl::LogType::Error, rktl::String(mName + " - Caught Unknown Exception (resetting process)."));
        resetProcess();
    }
    return false;
}

bool VideoProcess::setParameters(ProcessParams const& params)
{
    if (!onSetParameters(params))
        return false;
    onFrameResize(mWidth, mHeight, mFrameScale);
    mName = params.getName();
    enable(params.isEnabled());
    return true;
}

void VideoProcess::enable(bool enabled)
{
    if (enabled == mEnabled)
        return;
    onEnable(enabled);
    mEnabled = enabled;
}

void VideoProcess::onFrameResize(unsigned int, unsigned int, double) { }

bool VideoProcess::onSetLogger(rktl::Logger*)
{
    return true;
}

void VideoProcess::onEnable(bool) { }

bool VideoProcess::onSetParameters(ProcessParams const&)
{
    return true;
}

void VideoProcess::log(rktl::LogType type, rktl::String const& text) const
{
    if (mLogger)
        mLogger->log(type, rktl::String(mName + ": " + text));
}

void VideoProcess::log(rktl::LogType type, char const* format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    rktl::String const text = rktl::String::fromVAList(format, arguments);
    va_end(arguments);
    log(type, text);
}
