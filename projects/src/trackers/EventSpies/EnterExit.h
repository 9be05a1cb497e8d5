#pragma once

#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectBook.h"

#include <utility>
#include <vector>

/// Sees its zones as a doorway and raises an event when an object passes through, with "Enter" or "Exit" as its subtitle.
///
/// An object that began in a zone and has come out of it comes into view through the doorway: its event is extended on every
/// frame that it stands outside. One that began outside and whose track ends in a zone goes away through it, and raises its
/// event once, with the last frame in which it stood there. Without zones nothing happens.
class EnterExit : public FrameEventSpy {
public:
    enum Type : int32_t {
        unknown = -1,
        both = 0,
        enter = 1,
        exit = 2,
    };

    /// Both types unknown, so silent.
    EnterExit();
    /// type: the passages that alarm. zoneType: with `exit`, coming out of the zone into view is "Enter" and going away in it
    /// "Exit", as at the exit of the place that the camera looks at; otherwise the zone is itself what is entered and left.
    EnterExit(char const* name, char const* description, Type type, Type zoneType);
    /// A copy takes the rule, but no objects.
    EnterExit(EnterExit const& other);
    EnterExit& operator=(EnterExit const& other);

    Type getType() const { return mType; }
    void setType(Type type) { mType = type; }
    Type getZoneType() const { return mZoneType; }
    /// False, and as before, for all but `enter` and `exit`.
    bool setZoneType(Type zoneType);
    /// "Both", "Enter" and "Exit"; "Unknown" for anything else.
    static rktl::String typeToString(Type const& type);
    /// `unknown` for anything but the three.
    static Type stringToType(char const* text);

    /// Whether size, distance and age of the object let it through.
    bool checkObject(Object const& object) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    /// False also for a zone type other than "Enter" and "Exit".
    bool fromXML(char const* xml) override;
    EnterExit* clone() const override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    rktl::String getRuleText() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void internalSpy(ProcessFrame const& frame) override;

private:
    /// What is known of an object from the last processed frame.
    struct Passage {
        bool wouldArrive = false;      // if its track ended there
        rktl::SmartPtr<Frame> mInside; // of an object that came from outside and stands inside
    };
    using Ids = std::vector<uint32_t>;
    using Arrivers = std::vector<std::pair<uint32_t, rktl::SmartPtr<Frame>>>; // each with the last frame in which it stood inside

    bool isInZone(rkml::Point2D<int> const& place) const;
    bool check(Sighting const& seen) const;
    void follow(ProcessFrame const& frame, Ids& leavers, Arrivers& arrivers);
    bool alarmsOn(Type passage) const { return mType == both || mType == passage; }

    Type mType = unknown;
    Type mZoneType = unknown;
    ObjectBook<Passage> mLastObjects;
};
