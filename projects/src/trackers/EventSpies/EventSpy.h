#pragma once

#include "BaseClasses/Event.h"
#include "BaseClasses/EventCache.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_LogType.h"
#include "misc/rktl_String.h"
#include "misc/rktl_UUID.h"
#include "misc/rktl_url.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_StringMap.h"
#include "sync/rkst_Vault.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <vector>

namespace rktl {
class Logger;
}
namespace rkxml {
class DomIterator;
}

/// One rule that watches the video analysis and raises events. The base has the spy's identity, its alarm parameters, a cache
/// of its events, and the scaffolding of its XML and binary forms.
///
/// Binary form: a stream of name, guid, description, maximum age, priority, merge flag, alarm type, attributes, and what
/// serialize adds. One thread at a time uses a spy; its cache has a vault of its own, since listeners and readers may come
/// back into it. Each access to that waits at most 15 s.
class EventSpy : public rktl::Attributes, public rksl::Serializable {
public:
    /// Is told of each new and each changed event, on the frame thread, with the spy's cache locked.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void onEvent(Event const& event) = 0;
    };

    /// The uid of the next event is one more than this: uids start at 1 and are unique in the process.
    static std::atomic<uint32_t> mNextUID;

    EventSpy(char const* name, char const* description);
    /// A copy has no events, and no listener.
    EventSpy(EventSpy const& other);
    EventSpy& operator=(EventSpy const& other);
    /// The cache must not be in use: a guard that lives on is a fault of ours, and ends the process.
    ~EventSpy() noexcept override = default;

    rktl::String const& getName() const { return mName; }
    void setName(rktl::String const& name) { mName = name; }
    rktl::UUID const& getGuid() const { return mGuid; }
    void setGuid(rktl::UUID const& guid) { mGuid = guid; }
    rktl::String const& getDescription() const { return mDescription; }
    void setDescription(rktl::String const& description) { mDescription = description; }
    /// Life of an event that nobody collects.
    rktl::ElapsedTime const& getMaxAge() const { return mMaxAge; }
    void setMaxAge(rktl::ElapsedTime const& age) { mMaxAge = age; }
    uint16_t getPriority() const { return mPriority; }
    void setPriority(uint16_t priority) { mPriority = priority; }
    /// One event for all objects of the spy.
    bool getMergeEvents() const { return mMergeEvents; }
    void setMergeEvents(bool merge) { mMergeEvents = merge; }
    rktl::String const& getAlarmType() const { return mAlarmType; }
    void setAlarmType(rktl::String const& type) { mAlarmType = type; }

    /// Adds the new and changed events, each once. False when the cache stays locked.
    bool getEvents(rksl::List<Event>& events);
    /// The same, into the cache of who gathers them.
    bool getEvents(EventCache& gathered);

    /// The spy as the source of its events: meridane://*.localsite/*/NAME.
    rktl::url defaultOrigin() const;

    /// Stores an event, or extends the one of its uid, and tells the listener. frame: added to the event unless null.
    /// keepUid: an unknown uid is not replaced by a fresh one. Returns the uid, or 0 when the cache stays locked.
    uint32_t addEvent(Event event, Frame const* frame, bool keepUid);

    /// Extends the event of that uid by a frame's time or, when there is none, raises a new one. confidence: 0 to 1, below 0
    /// for none. The texts may be null. Returns the uid, or 0 when the cache stays locked.
    uint32_t addEventFrame(
        uint32_t eventUid, Frame const& frame, double confidence, char const* subtitle, char const* description);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// Also empties the cache. False when the text is no element with children.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// A new copy of the concrete spy, owned by the caller.
    virtual EventSpy* clone() const = 0;
    /// Adds name and value pairs that say how the spy stands.
    virtual void getStatus(rksl::StringMap<rktl::String>& status);
    /// Adds a line for each thing in the configuration that keeps the rule from doing what it is for, such as
    /// "zones: zone 2 has 1 point, it needs 3". The spy runs with it all the same: this is for who lets people configure spies.
    virtual void findFaults(std::vector<rktl::String>& faults) const;
    /// Forgets all running state and all events.
    virtual void reset() = 0;
    /// For people.
    virtual rktl::String getFriendlyName() const = 0;
    /// Not owned; may be null.
    virtual void setListener(Listener* listener) { mListener = listener; }
    virtual void setLogger(rktl::Logger* logger) { mLogger = logger; }

protected:
    static constexpr unsigned int lockLimit = 15000; // ms

    // The concrete part of the forms.
    virtual bool serialize(rksl::MemIOStream& stream) const = 0;
    virtual bool unserialize(rksl::MemIOStream& stream) = 0;
    /// xml becomes the elements that follow those of the base.
    virtual void onCreateXML(rktl::String& xml) const = 0;
    /// An element that the base does not know.
    virtual void onParseXML(rkxml::DomIterator& element) = 0;

    /// Forgets events whose time is over; onEventCleaned is called for each, without the lock.
    virtual void clean(rktl::TimeStamp const& now);
    virtual void onEventCleaned(uint32_t uid);

    virtual bool internalSerialize(rksl::MemIOStream& stream) const;

    /// "NAME: text". False without a logger.
    virtual bool log(rktl::LogType type, rktl::String const& text);

    /// Percent of a confidence from 0 to 1; false for one below 0 and for what is not a number: there is none then.
    static bool toPercent(double confidence, uint16_t& percent);
    /// Raises the event's confidence, if there is a higher one, and its time, and tells the listener.
    void extend(Event& event, Frame const& frame, double confidence);
    Event newEvent(Frame const& frame, double confidence, char const* subtitle, char const* description) const;

    static Event::Moment moment(Frame const& frame) { return {frame.getTimePosition(), frame.getPosition()}; }

    rkst::Vault<EventCache>& events() { return mEvents; }

    /// defaultOrigin as text. Good until the name changes.
    rktl::String const& originText();

    // The XML form of a concrete spy: its element holds the base's as "EventSpy", then its own keys.
    rktl::String wrapXML(char const* tag, rktl::String const& keys) const;
    /// readChild gets each child, and refuses the whole text by false. False when the text is no element with children, or a
    /// child was refused.
    static bool readChildren(char const* xml, std::function<bool(rkxml::DomIterator&)> const& readChild);

private:
    void parseElement(rkxml::DomIterator& element);
    void tell(Event const& event);

    rktl::String mName;
    rktl::UUID mGuid;
    rktl::String mDescription;
    rktl::ElapsedTime mMaxAge;
    uint16_t mPriority = 0;
    bool mMergeEvents = false;
    rktl::String mAlarmType = "alarm";
    rktl::String mOriginText; // for mOriginName, empty before it is asked for
    rktl::String mOriginName;
    rkst::Vault<EventCache> mEvents;
    Listener* mListener = nullptr;   // not owned
    rktl::Logger* mLogger = nullptr; // not owned
};
