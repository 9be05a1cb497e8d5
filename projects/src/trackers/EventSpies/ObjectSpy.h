#pragma once

#include "misc/rktl_Double.h"
#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectBook.h"

/// Watches objects that hold one of the spy's classes with enough confidence, or all objects where no class is named, and raises
/// one event for each that was seen long enough, when it has gone. The event spans the object's whole time under watch and
/// keeps the frame of its highest confidence. Zones, sizes, ages and distances have no effect.
///
/// Each object under watch holds one frame without images, which objects of the same moment share.
class ObjectSpy : public FrameEventSpy {
public:
    ObjectSpy();
    /// minConfidence: 0 to 1, of a frame that counts. minValidTime: how long an object must be seen. maxInvalidTime: how long it
    /// may go unseen before its event is raised.
    ObjectSpy(char const* name, char const* description, float minConfidence, rktl::ElapsedTime const& minValidTime,
        rktl::ElapsedTime const& maxInvalidTime);
    /// A copy watches nothing yet.
    ObjectSpy(ObjectSpy const& other);
    ObjectSpy& operator=(ObjectSpy const& other);

    double getMinConfidence() const { return mMinConfidence; }
    rktl::ElapsedTime const& getMinValidTime() const { return mMinValidTime; }
    rktl::ElapsedTime const& getMaxInvalidTime() const { return mMaxInvalidTime; }
    /// Whether a frame below the least confidence leaves the object under watch.
    bool getNonContiguous() const { return mNonContiguous; }
    void setNonContiguous(bool nonContiguous) { mNonContiguous = nonContiguous; }
    /// Whether objects are watched from the first moment of their tracking on.
    bool getTrackNascent() const { return mTrackNascent; }
    void setTrackNascent(bool track) { mTrackNascent = track; }
    /// Objects under watch.
    size_t countActive() const { return mActive.size(); }

    /// A copy of the frame, without its images, which all objects of a moment share.
    rktl::SmartPtr<Frame> const& getFramePtr(Frame const& frame) { return keep(frame); }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    ObjectSpy* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    void getShapes(std::vector<SpyShape>& shapes) const override;
    rktl::String getRuleText() const override;

protected:
    /// One object under watch.
    struct ObjectEvent {
        uint32_t mObjectId = 0;
        float mConfidence = 0.0f;     // the highest, 0 to 1
        bool mValid = false;          // seen for long enough
        rktl::Integer mValidFrames;   // that counted
        Event::Moment mStart, mStop;  // first and latest frame that counted
        rktl::SmartPtr<Frame> mFrame; // of the highest confidence
        rktl::String mDescription;    // for the event
    };

    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;

    /// Is told of each object that is no longer watched.
    virtual void onErase(uint32_t objectId);
    /// Is shown each event before it is added, and the frame that it keeps.
    virtual void onNewEvent(Event& event, Frame const& frame);
    /// How sure it is that this is an object to watch, 0 to 1; -1 for one of none of the classes.
    virtual float computeConfidence(Object const& object) const;
    /// Takes over a higher confidence, and the frame with it.
    virtual void updateConfidence(Object const& object, float confidence, Frame const& frame, ObjectEvent& entry);

private:
    ObjectEvent* watch(Sighting const& seen, ProcessFrame const& frame, Event::Moment const& now, ObjectEvent* known);
    ObjectEvent enter(Object const& object, float confidence, ProcessFrame const& frame);
    void close(ObjectEvent const& entry);
    void addObjectEvent(ObjectEvent const& entry);

    ObjectBook<ObjectEvent> mActive;
    bool mNonContiguous = false;
    bool mTrackNascent = false;
    rktl::Double mMinConfidence{0.5};
    rktl::ElapsedTime mMinValidTime;
    rktl::ElapsedTime mMaxInvalidTime;
};
