#pragma once

#include "math/rkml_Point2d.h"
#include "misc/rktl_Fifo.h"
#include "misc/rktl_TimeStamp.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/ObjectBook.h"

#include <cstdint>

/// Raises an event when an object has stayed in one place for a time, and extends it while the object stays on. An object
/// stays while no step and no distance from the mean of its places is longer than a few pixels; one that drifts away starts
/// anew from as far back as it is near the mean again. A zone has to hold that mean. Minimum age and distance have no effect,
/// and objects of type "Static" count like others.
class Idle : public FrameEventSpy {
public:
    /// Without a movement, so silent.
    Idle();
    /// movement: pixels an object may wander. A negative wait time leaves the spy silent, as does a movement of -1.
    Idle(char const* name, char const* description, rktl::ElapsedTime const& waitTime, int movement);
    /// A copy takes the rule, but no objects.
    Idle(Idle const& other);
    Idle& operator=(Idle const& other);

    rktl::ElapsedTime const& getWaitTime() const { return mWaitTime; }
    /// Objects that are watched already keep theirs.
    void setWaitTime(rktl::ElapsedTime const& time) { mWaitTime = time; }
    int32_t getMovement() const { return mMovement; }
    void setMovement(int32_t pixels) { mMovement = pixels; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using FrameEventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    Idle* clone() const override;
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
    using Point = rkml::Point2D<int>;

    struct Place {
        int32_t x, y;
        int64_t time; // ms since the epoch
    };

    /// The places of one object within the wait time.
    struct IdleInst {
        explicit IdleInst(rktl::ElapsedTime const& window)
            : mWindow(window.toMilliseconds())
        {
        }

        /// Whether the window before time ends behind the oldest place.
        bool isFull(int64_t time) const { return !mPositions.empty() && time - mPositions.front().time > mWindow; }
        void prefetch() const { mPositions.prefetch(); }
        void startAt(Place const& place);
        void add(Place const& place);
        /// Forgets what is older than the window before time; false when nothing is left.
        bool dropOld(int64_t time);
        void dropOldest();
        Point mean() const;

        int64_t mWindow;              // ms
        rktl::Fifo<Place> mPositions; // oldest first
        Place mNewest{0, 0, 0};       // of mPositions, where it has any, near at hand
        int64_t mSumX = 0;            // of mPositions
        int64_t mSumY = 0;
        bool mIdle = false; // has stayed for the whole window
        int32_t mState = Object::invalid;
    };

    IdleInst* follow(Sighting const& seen);
    void extend(IdleInst& instance, Place const& place) const;
    bool isStaying(IdleInst& instance) const;

    ObjectBook<IdleInst> mInstances;
    rktl::ElapsedTime mWaitTime;
    int32_t mMovement = -1; // pixels
};
