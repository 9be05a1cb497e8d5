#pragma once

#include "BaseClasses/ProcessParams.h"
#include "BaseClasses/StepStatistics.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_LogType.h"
#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"
#include "plugin/rkpl_PluginPtr.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

#include <list>

class ProcessFrame;

namespace rktl {
class Logger;
}

/// The frame that all stages share: it enables a stage, gives it its parameters, drives it once per frame, and turns its
/// failures into log lines. A failed stage does not stop the others: it is reset and meets the next frame as usual.
/// Driven, and configured, by the frame thread alone.
class VideoProcess : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{FC85E573-5EF9-4d3c-8C07-D9068EE85954}";

    bool supports(char const* wanted, rkpl::Plugin** result) override;

    /// The stage's type name.
    virtual rktl::String getProcessType() const = 0;
    virtual rktl::String getProcessSubtype() const;

    /// Enabled, with getProcessType as type and name.
    virtual ProcessParams getDefaultParameters() const;

    /// Not owned; null: the stage is silent.
    virtual void setLogger(rktl::Logger* logger);

    // What the stage offers and wants; each adds to the argument.
    virtual void getSupportedAttributes(rksl::Set<rktl::String>& attributes) const;
    virtual void getAttributes(rksl::StringMap<rktl::String>& attributes) const;
    virtual void getSupportedImageTypes(rksl::Set<rktl::String>& types) const;
    virtual void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const;

    /// The stages beside this one, of which it may keep those it needs.
    virtual bool setProcesses(std::list<rkpl::PluginPtr<VideoProcess>> const& processes);

    /// Tells the stage of a new frame size or scale through onFrameResize. The first frame always is one.
    virtual void reserveFrame(ProcessFrame const& frame);

    /// Brings the stage back to a clean state.
    virtual void resetProcess() = 0;

    /// One INFO line for each measured step; drops the 10 oldest samples of each.
    virtual void dumpStats();

    /// True at once while the stage is disabled. False when the stage failed, which has then been logged; a stage that threw
    /// has been reset. Throws nothing but rkgpu::Exception.
    bool processFrame(ProcessFrame& frame);

    /// False when the stage refuses the params; nothing but what it did itself has changed then.
    bool setParameters(ProcessParams const& params);

    void enable(bool enabled);
    bool isEnabled() const { return mEnabled; }
    rktl::String const& getName() const { return mName; }

protected:
    virtual void onFrameResize(unsigned int width, unsigned int height, double scale);

    /// The stage's work; true on success.
    virtual bool onProcessFrame(ProcessFrame& frame) = 0;
    virtual bool onSetLogger(rktl::Logger* logger);
    virtual void onEnable(bool enabled);
    virtual bool onSetParameters(ProcessParams const& params);

    /// "NAME: text"; nothing without a logger.
    void log(rktl::LogType type, rktl::String const& text) const;
#ifdef __GNUC__
    __attribute__((format(printf, 3, 4)))
#endif
    void
    log(rktl::LogType type, char const* format, ...) const;

    // Around a step whose duration dumpStats shows.
    void captureStats(char const* name)
    {
        mStats.start(name);
    }
    void releaseStats(char const* name)
    {
        mStats.stop(name);
    }

    rktl::Logger* getLogger() const
    {
        return mLogger;
    }
    unsigned int getWidth() const
    {
        return mWidth;
    }
    unsigned int getHeight() const
    {
        return mHeight;
    }
    double getFrameScale() const
    {
        return mFrameScale;
    }

private:
    rktl::Logger* mLogger = nullptr; // not owned
    rktl::String mName;
    bool mEnabled = false;
    unsigned int mWidth = 0; // of the last frame
    unsigned int mHeight = 0;
    double mFrameScale = 1.0;
    StepStatistics mStats;
};
