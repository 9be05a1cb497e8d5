#pragma once

#include "BaseClasses/Frame.h"
#include "BaseClasses/Object.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_CopyOnWrite.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_IntMap.h"
#include "streams/rksl_List.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

namespace rkxml {
class DomIterator;
}

/// One alarm: what happened, over which span of time, on which objects, seen in which frames, with what confidence. Origins
/// are URLs as text, as rktl::url writes it; the objects are listed by the origin of the component that knows them by their ids.
/// A plain value without locks. Copies share texts, objects and frames until one of them changes: an event that goes on is
/// reported again with each frame.
class Event : public rksl::Serializable, public rktl::Attributes {
public:
    enum Status : uint32_t { New, Reviewed, Flagged, Deleted };

    /// Wall-clock time and position in the stream of one frame.
    using Moment = std::pair<rktl::TimeStamp, rktl::ElapsedTime>;

    /// Frames that an event keeps unless it is told to keep all.
    static constexpr size_t framesMax = 5;

    Event() = default;
    /// priority: a key of the priority table. confidence: percent. Updated now.
    Event(Moment const& start, Moment const& stop, rktl::String const& type, uint16_t priority, uint16_t confidence);

    // ---- What happened ----

    rktl::String const& getSubtitle() const { return mSubtitle; }
    void setSubtitle(rktl::String const& subtitle) { mSubtitle = subtitle; }
    /// "alarm" by default; "count" takes no frames, "external" comes from outside.
    rktl::String const& getType() const { return mType; }
    void setType(rktl::String const& type) { mType = type; }
    rktl::String const& getDescription() const { return getAttribute("description"); }
    void setDescription(rktl::String const& description) { setAttribute("description", description); }
    rktl::String const& getSpyType() const { return getAttribute("spy-type"); }
    void setSpyType(rktl::String const& type) { setAttribute("spy-type", type); }
    /// 0 while unassigned.
    uint32_t getUID() const { return mUID; }
    void setUID(uint32_t uid) { mUID = uid; }
    int16_t getPriority() const { return mPriority; }
    void setPriority(int16_t priority) { mPriority = priority; }
    /// Percent.
    uint16_t getConfidence() const { return mConfidence; }
    /// False, and as before, for more than 100.
    bool setConfidence(unsigned short percent);

    // ---- When; status ----

    Moment const& getStart() const { return mStart; }
    void setStart(Moment const& start) { mStart = start; }
    Moment const& getStop() const { return mStop; }
    /// Also updates the event now.
    void setStop(Moment const& stop);
    /// System time of the latest change.
    rktl::TimeStamp const& getUpdated() const { return mUpdated; }
    void setUpdated(rktl::TimeStamp const& updated) { mUpdated = updated; }

    Status getStatus() const { return mStatus; }
    void setStatus(Status status) { mStatus = status; }
    /// False: new again. True: its frames go.
    void setReviewed(bool reviewed);

    /// "New", "Reviewed", "Flagged", "Deleted", or "" for any other value.
    static rktl::String stringFromStatus(Status status);
    /// Any case. False, and status as before, for an unknown text.
    static bool statusFromString(rktl::String const& text, Status& status);

    /// "", "critical", "major", "minor", "warning" and "info" for 0 to 5.
    static rksl::IntMap<rktl::String> getDefaultPriorityMap();
    static rksl::IntMap<rktl::String> mPriorityStringMap;
    /// "" for a key that is not in the table.
    static rktl::String priorityToString(short priority);
    /// The first key whose text is equal, in exact case, or -1.
    static short stringToPriority(rktl::String const& text);

    // ---- Where from ----

    rktl::String const& getOrigin() const { return *mOrigin; }
    /// renameAll: the frames, and the ids listed under the old origin, move to the new one. False for an empty URL.
    bool setOrigin(rktl::String const& origin, bool renameAll);
    bool addComponentOrigin(rktl::String const& origin);
    void getComponentOrigins(rksl::Set<rktl::String>& origins, bool withOwnOrigin) const;
    rktl::String getSpyName() const;
    /// The spy's, else the camera's, else the machine's name, with the subtitle behind it.
    rktl::String getDisplayName() const;
    /// Where each frame's camera can be watched, by camera name. keepHidden: with the keys that are the system's own.
    void getVideoURIs(rksl::StringMap<rktl::String>& uris, bool keepHidden) const;

    // ---- Frames; copies without pixels ----

    rksl::List<Frame> const& getFrames() const { return *mFrames; }
    rksl::List<Frame>& getFrames() { return mFrames.change(); }
    /// With 5 frames and without keepAll the last one makes room: the first frames win.
    void addFrame(Frame const& frame, rktl::String const& origin, bool keepAll);
    void setFrameAttributes(rktl::String const& name, rktl::String const& value);
    /// Gathers the frames and objects of other events, each frame once, in the order of time.
    void mergeFrames(rksl::List<Event> const& events);

    // ---- Objects; lists are ascending, and id 0 stands for a component without objects ----

    rksl::StringMap<rktl::String> const& getObjects() const { return *mObjects; }
    /// True when the id was listed already; false when it was added, or the origin is empty.
    bool addObject(uint32_t id, rktl::String const& origin);
    /// Adds the frame too, when the id and the frame are both new; true only then.
    bool addObject(uint32_t id, Frame const& frame, rktl::String const& origin);
    bool addObjects(rksl::Set<rktl::Integer> const& ids, rktl::String const& origin);
    template <class Ids> bool setObjects(Ids const& ids, rktl::String const& origin);
    /// False for an unknown origin; ids: without id 0.
    bool getObjectIDs(rktl::String const& origin, rksl::Set<rktl::Integer>& ids) const;
    /// Shows the ids but 0, as they stand in the list; none for an unknown origin.
    template <class Visit> void visitObjectIDs(rktl::String const& origin, Visit visit) const;
    /// The list as text, or "".
    rktl::String objectsString(rktl::String const& origin) const;
    /// Adds the ids of all components on the camera that the origin names.
    void getCameraObjects(rktl::String const& origin, rksl::Set<rktl::Integer>& ids) const;
    /// The objects of the frames by their "GUID" attribute, each with the "native-resolution" of its frame.
    void getAlarmingObjects(std::map<rktl::String, Object>& objects) const;

    /// Takes over what may have changed. Throws rktl::Exception when the uids differ.
    void updateData(Event const& other, bool copyFrames);

    /// XML has neither frames nor positions; what is read back has positions of -1 ms.
    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    bool storeObjects(rktl::String joined, rktl::String const& origin);
    void readElement(rkxml::DomIterator const& element, rktl::ElapsedTime& length);

    rktl::String mSubtitle;
    rktl::CopyOnWrite<rktl::String> mOrigin;
    rktl::String mType = "alarm";
    rktl::CopyOnWrite<rksl::StringMap<rktl::String>> mObjects; // origin to ids with commas
    rktl::CopyOnWrite<rksl::List<Frame>> mFrames;
    Moment mStart;
    // What changes while the event goes on stands together.
    Moment mStop;
    rktl::TimeStamp mUpdated;
    Status mStatus = New;
    uint32_t mUID = 0;
    int16_t mPriority = 0;
    uint16_t mConfidence = 0; // percent
};

template <class Ids> bool Event::setObjects(Ids const& ids, rktl::String const& origin)
{
    return storeObjects(rktl::String::join(ids, ","), origin);
}

template <class Visit> void Event::visitObjectIDs(rktl::String const& origin, Visit visit) const
{
    auto const listed = mObjects->find(origin);
    if (listed == mObjects->end())
        return;
    std::string_view rest = listed->second;
    while (!rest.empty()) {
        std::string_view const token = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(rest.size(), token.size() + 1));
        if (int32_t const id = rktl::String(token).toInteger(); id != 0)
            visit(id);
    }
}
