#pragma once

#include "math/rkml_BoundingBox.h"
#include "math/rkml_ColorHistogram.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_CopyOnWrite.h"
#include "misc/rktl_Double.h"
#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeQueue.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_List.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_Set.h"
#include "streams/rksl_StringMap.h"

#include <cstdint>

/// What the system knows of a tracked thing: its id, its dated path of boxes, when it was first seen, its kind, its classes,
/// its tracking state, its colours and free-form attributes. Plain data; copies share the path, and the colours, until one
/// of them changes, so that a frame's copy of all objects is cheap. Boxes are in pixels of the frame. Not thread-safe.
class Object : public rksl::Serializable, public rktl::Attributes {
public:
    enum State : int32_t {
        invalid = -1, ///< false or not placed, the state of a new object, or one that has stopped moving for too long
        removed = 0,  ///< by request; stays so in later frames
        nascent = 1,
        purged = 2, ///< moved out of the living into limbo
        tracked = 3,
        resurrected = 4, ///< continues an earlier object
        lost = 5,        ///< not matched in this frame, waiting
    };

    /// One point of the path.
    struct Node {
        rkml::BoundingBox<int> mBox;
        rksl::List<rktl::Integer> mMerges; ///< ids of the other objects that shared the box at that time, ascending
    };
    using Track = rktl::TimeQueue<Node>;

    /// A moving object that keeps 15 seconds of its path.
    Object();

    /// type: "Moving" or "Static" in this system. window: how much of its path the object keeps.
    Object(rktl::String const& type, rktl::ElapsedTime const& window);

    // ---- Identity and state ----

    uint32_t getId() const { return mId; }
    void setId(uint32_t id) { mId = id; }
    rktl::String const& getType() const { return mType; }
    void setType(rktl::String const& type) { mType = type; }
    int32_t getState() const { return mState; }
    void setState(int32_t state) { mState = state; }

    /// Whether the binary form carries the whole path, or only its newest node.
    bool isFullTrack() const { return mFullTrack; }
    void setFullTrack(bool full) { mFullTrack = full; }

    // ---- The path ----

    /// Appends a node and forgets what has left the window. The first one dates the object, and the first box of a positive
    /// size is its first box. Returns the new length of the path.
    unsigned int insert(rkml::BoundingBox<int> const& box, rksl::List<rktl::Integer> const& merges, rktl::TimeStamp const& time);

    Track const& getTrack() const { return *mTrack; }

    // Each is false, and the argument as before, for an empty path.
    bool newest(rkml::BoundingBox<int>& box) const;
    bool newest(Node& node, rktl::TimeStamp& time) const;
    bool newestTime(rktl::TimeStamp& time) const;
    bool newestPosition(rktl::ElapsedTime& position) const;
    bool oldestPosition(rktl::ElapsedTime& position) const;
    bool updateNewest(rkml::BoundingBox<int> const& box);

    /// From first seen to the newest node; 0 for an empty path.
    rktl::ElapsedTime age() const;
    rktl::TimeStamp const& getFirstSeen() const { return mFirstSeen; }
    rkml::BoundingBox<int> const& getFirstBox() const { return mFirstBox; }

    /// Pixels from the centre of the first box to that of the newest; 0 for an empty path.
    double travel() const;

    /// How many others share the newest box.
    unsigned int getMergeListSize() const;

    /// Keeps the newest node alone.
    void clearTail();

    /// Smooths the motion of the box, in pixels per update. To be called with a new box before it is inserted.
    void setAverageVel(rkml::BoundingBox<int> const& box);
    float getVelocityX() const { return mVelocityX; }
    float getVelocityY() const { return mVelocityY; }

    bool setEstimatedPosition(rkml::BoundingBox<int> const& box);
    rkml::BoundingBox<int> const& getEstimatedPosition() const { return mEstimatedPosition; }

    // ---- Classes; names are in lower case ----

    rksl::Set<rktl::String> const& getClasses() const { return mClasses; }
    void addClass(rktl::String const& name) { mClasses.insert(name.toLower()); }
    void setClasses(rksl::Set<rktl::String> const& classes) { mClasses = classes; }
    rksl::StringMap<rktl::Double> const& getClassConfidences() const { return mClassConfidences; }
    void setClassConfidence(rktl::String const& name, double confidence) { mClassConfidences[name.toLower()] = confidence; }
    void clearClassConfidences() { mClassConfidences.clear(); }

    /// Product of the confidences of those of the names, a list with commas, that the object has; -1.0 when it has none.
    double getClassConfidence(rktl::String const& names) const;

    /// The box of a class; the newest box for a class without one, an empty box for no such class. Throws rktl::Exception for
    /// a class without a box of an object without a path.
    rkml::BoundingBox<int> getClassRegion(rktl::String const& name) const;
    /// A box without a size removes the class's region.
    void setClassRegion(rktl::String const& name, rkml::BoundingBox<int> const& box);
    void clearClassRegions() { mClassRegions.clear(); }

    // ---- Colours ----

    rkml::ColorHistogram const& getHistogram() const { return *mHistogram; }
    /// Also sets the attribute "Color Palette" to the colours of the five fullest bins, fullest first.
    void setHistogram(rkml::ColorHistogram const& histogram);
    /// 1 for the same colours, 0 for none in common.
    double compareHistogram(Object const& other) const;

    // ---- The whole ----

    /// Takes over the path of an object that this one continues: its nodes, its birth when that was earlier, its colours.
    void mergeTrack(Object const& other);

    /// Follows the other object, as a receiver of its newest state does: the path grows by its newest node, or is replaced
    /// when the other brings all of it. The histogram stays.
    void update(Object const& other);

    /// Multiplies all boxes, rounding half away from zero and held to 32 bits.
    void scale(double factor);

    /// The track part of the binary form.
    void serializeTrack(rksl::MemIOStream& stream) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    rktl::String toXML() const override;                ///< throws: an object has no XML form
    rktl::String toXML(char const* tag) const override; ///< throws
    bool fromXML(char const* xml) override;             ///< throws
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    /// Throws rktl::Exception, with the object as it was, for what is no object. The path is kept, and grows by the node that
    /// comes in, unless the whole path does.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    unsigned int readFields(unsigned char const* in, unsigned int length);
    void unserializeTrack(rksl::MemIOStream& stream);

    uint32_t mId = 0;
    rktl::CopyOnWrite<Track> mTrack;
    rktl::CopyOnWrite<rkml::ColorHistogram> mHistogram;
    rktl::String mType;
    rktl::TimeStamp mFirstSeen;
    rkml::BoundingBox<int> mEstimatedPosition;
    rkml::BoundingBox<int> mFirstBox;
    float mVelocityX = 0.0f;
    float mVelocityY = 0.0f;
    rksl::Set<rktl::String> mClasses;
    rksl::StringMap<rktl::Double> mClassConfidences;
    bool mFullTrack = false;
    int32_t mState = invalid;
    rksl::StringMap<rkml::BoundingBox<int>> mClassRegions;
};
