#pragma once

#include "BaseClasses/Event.h"
#include "BaseClasses/Frame.h"
#include "image/rk_vertex.h"
#include "math/rkml_BoundingBox.h"
#include "video/rkvl_Resolution.h"

#include <cstdint>
#include <map>
#include <set>

struct rk_image;
struct rkgpu_image;

/// The working form of a frame inside the pipeline: a frame with its events and the regions that are not yet tracked, which
/// remembers which images were set for the moment. It is used again for each frame: clear keeps the image buffers, so that
/// a frame of the same size allocates none. Not copied: it owns the regions.
class ProcessFrame : public Frame {
public:
    static constexpr unsigned int all = UINT32_MAX;  ///< for spliceUntracked
    static constexpr unsigned int gpuType = 0x10000; ///< type bit of an image that a graphics processor holds

    ProcessFrame() = default;
    ~ProcessFrame() override;
    ProcessFrame(ProcessFrame const&) = delete;
    ProcessFrame& operator=(ProcessFrame const&) = delete;

    /// Pixels of the frame.
    rkvl::Resolution const& getResolution() const { return mResolution; }
    void setResolution(rkvl::Resolution const& resolution) { mResolution = resolution; }
    unsigned int getWidth() const;
    unsigned int getHeight() const;

    // ---- Images ----

    void setImage(rktl::String const& name, rkil::ImageBase const& image, unsigned int types) override;
    /// Copies the pixels.
    void setImage(rktl::String const& name, rk_image const& image, unsigned int types);
    /// Colour and gray at once, from blue, green, red and luma.
    void setBGRY(rktl::String const& name, rk_image const& image);
    /// Exchanges the buffers: image has the old one afterwards.
    void swapImage(rktl::String const& name, rk_image& image, unsigned int types);
    /// Adds forms to an image; throws rktl::Exception when it is not set.
    void addType(rktl::String const& name, unsigned int types);
    /// The pixels stay, for the next frame.
    void unsetImage(rktl::String const& name);

    /// Whether the image is set with all of these types.
    bool isImageSet(rktl::String const& name, unsigned int types) const override;
    /// Throws rktl::Exception when the image is not set.
    rkil::MultiImage const& getMultiImage(rktl::String const& name) const override;

    /// image: not owned; null by default.
    void setGPUImage(rktl::String const& name, rkgpu_image* image);
    rkgpu_image* getGPUImage(rktl::String const& name) const;

    void clearImages() override;

    /// Replaces each of these images by one of twice the size.
    void upscaleImages(rksl::Set<rktl::String> const& names);
    /// Gives each of these images its JPEG form. No codec stands behind that form, so limit has no effect.
    void compressImages(rksl::Set<rktl::String> const& names, rkvl::Resolution const& limit);
    /// Images that nobody asked for stay: their buffers serve the next frame.
    void clearUnrequested();

    // ---- Events ----

    rktl::NodeMap<uint32_t, Event> const& getEvents() const { return mEvents; }
    void setEvents(rktl::NodeMap<uint32_t, Event> const& events) { mEvents = events; }
    void clearEvents() { mEvents.clear(); }

    // ---- Regions, by the name of their detector ----

    /// Moves up to limit regions, as one block, from the head of list to the front of the entry.
    void spliceUntracked(rk_vertex** list, rktl::String const& name, unsigned int limit);
    void addUntracked(rkml::BoundingBox<int> const& box, rktl::String const& name, float motionScore);
    /// The head of the regions, still owned here, and their count; null and 0 for none.
    rk_vertex* getUntracked(rktl::String const& name, unsigned int& count) const;
    void classifyUntracked(rktl::String const& name, rktl::String const& className);
    rktl::String getUntrackedClass(rktl::String const& name) const;
    /// Somebody tracks these regions.
    void maskAsTracked(rktl::String const& name);
    /// Names of the regions that nobody has claimed.
    rksl::Set<rktl::String> nameUntracked() const;
    void clearUntracked(rktl::String const& name);
    void clearUntracked();

    void clear() override;

protected:
    /// Only what is set: other buffers hold pixels of earlier frames.
    rkil::MultiImage const* imageToWrite(rktl::String const& name) const override;

private:
    struct Untracked {
        rk_vertex* vertices = nullptr; // owned by the frame
        uint32_t count = 0;
        rktl::String className;
        bool untracked = false; // nobody has claimed the regions
    };

    rkil::MultiImage& setImageOf(rktl::String const& name);
    Untracked& openUntracked(rktl::String const& name);

    rktl::NodeMap<rktl::String, Untracked> mUntracked;
    rktl::NodeMap<uint32_t, Event> mEvents;
    std::set<rktl::String> mSetImages;
    std::map<rktl::String, rkgpu_image*> mGPUImages;
    rkvl::Resolution mResolution;
};
