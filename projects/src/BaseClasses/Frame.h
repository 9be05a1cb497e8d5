#pragma once

#include "BaseClasses/ObjectMap.h"
#include "image/rkil_MultiImage.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_CopyOnWrite.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

#include <cstdint>

namespace rkvl {
class Resolution;
}

/// One moment of video as the rest of the system talks about it: when it was taken, its attributes, its objects and its named
/// images. It is what travels to clients and what an event keeps. Has no XML form. Belongs to one thread at a time.
///
/// Image types are bits, as in rkil::MultiImage: 1 flat colour, 2 flat gray, 4 JPEG, 8 flat Lab with alpha.
class Frame : public rksl::Serializable, public rktl::Attributes {
public:
    enum Flags : uint32_t {
        endOfClip = 1,
        pause = 4,
        sceneBreak = 256,
        longPause = 512,
        carriedFlags = 0xff00, ///< flags of skipped frames reach the next one that is processed
    };

    Frame() = default;

    // ---- Time, source, flags ----

    void setTimePosition(rktl::TimeStamp const& time, rktl::ElapsedTime const& position);
    virtual rktl::TimeStamp const& getTimeStamp() const { return mTimeStamp; }
    virtual rktl::TimeStamp const& getTimePosition() const { return mTimeStamp; }
    /// Since the start of the stream.
    virtual rktl::ElapsedTime const& getPosition() const { return mPosition; }

    uint32_t getFlags() const { return mFlags; }
    void setFlags(uint32_t flags) { mFlags = flags; }

    /// False, and as before, for an empty URL.
    bool setOrigin(rktl::String const& origin);
    rktl::String const& getOrigin() const;

    void setProcessFps(double fps);
    /// 0 when it was never set.
    double getProcessFps() const;

    /// False when the frame does not say.
    bool getNativeResolution(rkvl::Resolution& resolution) const;

    /// Kept at its old value while that is 0 or below.
    virtual void setScale(double scale);
    virtual double getScale() const { return mScale; }

    // ---- Objects ----

    virtual ObjectMap const& getObjects() const { return *mObjects; }
    /// To be changed: they are this frame's alone from here on.
    virtual ObjectMap& getObjects() { return changeObjects(); }
    void setObjects(ObjectMap const& objects) { changeObjects() = objects; }
    /// The binary form is to carry the whole path of each object.
    void setFullTracks();
    /// Null when there is none; good as long as the map does not change.
    Object const* getObject(unsigned int id) const;
    bool getObject(unsigned int id, Object& object) const;
    bool removeObject(unsigned int id);

    /// Whether the binary form carries the objects.
    void setHasObjects(bool hasObjects) { mHasObjects = hasObjects; }
    bool hasObjects() const { return mHasObjects; }

    // ---- Images ----

    virtual void setImage(rktl::String const& name, rkil::ImageBase const& image, unsigned int types);
    /// Throws rktl::Exception when there is no image of that name.
    virtual rkil::MultiImage const& getMultiImage(rktl::String const& name) const;
    /// Whether there is such an image with any of these types.
    virtual bool isImageSet(rktl::String const& name, unsigned int types) const;
    bool hasImage(rktl::String const& name) const { return mImages.count(name) > 0; }
    void clearImage(rktl::String const& name);
    virtual void clearImages();

    /// Names of the images that go into the binary form.
    rksl::Set<rktl::String> const& getImageNames() const { return mImageNames; }
    void setImageNames(rksl::Set<rktl::String> const& names) { mImageNames = names; }

    // ---- The whole ----

    virtual void clear();

    /// Takes over flags, scale, times, attributes, objects and images.
    void setFrom(Frame const& other);
    /// The same, but without its images: what an event keeps of a frame.
    void setFromWithoutImages(Frame const& other);

    /// Same time and same origin.
    bool operator==(Frame const& other) const;
    /// By time, then by origin as text.
    bool operator<(Frame const& other) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override; ///< throws
    bool fromXML(char const* xml) override;             ///< throws
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    // ---- Metadata text for the camera's own analytics stream; the bodies are in FrameMetadata.cpp ----

    static rktl::String createEmptyMetadata();

    /// One line of XML with the newest box and the classes of each object. width, height: pixels of the frame, for boxes
    /// normalised to -1 to 1; when either is not positive, boxes stay in pixels. Class names are written as they stand.
    static void createFrameMetadata(
        rktl::TimeStamp const& time, ObjectMap const& objects, int width, int height, rktl::String& out);
    static void createBBoxMetadata(rkml::BoundingBox<int> const& box, int width, int height, rktl::String& out);
    static void createClassXML(Object const& object, rktl::String& out);

protected:
    rksl::StringMap<rkil::MultiImage>& images() { return mImages; }
    rksl::StringMap<rkil::MultiImage> const& images() const { return mImages; }

    /// The image of that name, made when it is missing. Finding one that is there allocates nothing.
    rkil::MultiImage& image(rktl::String const& name);

    /// The image that goes into the binary form under that name; null when the frame has none.
    virtual rkil::MultiImage const* imageToWrite(rktl::String const& name) const;

    /// Everything but the images' pixels, which stay to be used again.
    void clearButImages();

private:
    ObjectMap& changeObjects()
    {
        mHasFullTracks = false;
        return mObjects.change();
    }
    unsigned int countedImages() const;

    uint32_t mFlags = 0;
    rktl::TimeStamp mTimeStamp;
    rktl::ElapsedTime mPosition;
    rktl::CopyOnWrite<ObjectMap> mObjects;
    rksl::StringMap<rkil::MultiImage> mImages;
    rksl::Set<rktl::String> mImageNames;
    bool mHasObjects = false;
    bool mHasFullTracks = false; // all objects are known to be so: asking each takes long
    rktl::Double mScale{1.0};
};
