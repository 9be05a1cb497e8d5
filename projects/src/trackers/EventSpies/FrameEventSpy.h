#pragma once

#include "math/rkml_Polygon2d.h"
#include "misc/rktl_Integer.h"
#include "trackers/EventSpies/EventSpy.h"
#include "trackers/EventSpies/FrameView.h"
#include "trackers/EventSpies/SpyShape.h"

#include <vector>

class ProcessFrame;

/// What every spy over frames shares: zones, classes, limits of size, age and distance, the driver that runs once per frame,
/// and the book of which object raised which event. The concrete spies apply the limits themselves; empty zones mean the
/// whole frame.
class FrameEventSpy : public EventSpy {
public:
    FrameEventSpy(char const* name, char const* description);
    /// A copy takes the rule, not the state: it meets its first frame afresh.
    FrameEventSpy(FrameEventSpy const& other);
    FrameEventSpy& operator=(FrameEventSpy const& other);

    /// Normalised (all coordinates from 0 to 1) or in pixels.
    rksl::List<rkml::Polygon2D<float>> const& getZones() const { return mZones; }
    void setZones(rksl::List<rkml::Polygon2D<float>> const& zones);
    rksl::List<rktl::String> const& getClasses() const { return mClasses; }
    void setClasses(rksl::List<rktl::String> const& classes) { mClasses = classes; }
    /// Largest size of an object as a share of the frame's.
    float getMaxWidth() const { return mMaxWidth; }
    float getMaxHeight() const { return mMaxHeight; }
    void setMaxWidth(float share);
    void setMaxHeight(float share);
    /// Pixels.
    uint32_t getMinDistance() const { return mMinDistance; }
    void setMinDistance(uint32_t pixels) { mMinDistance = pixels; }
    rktl::ElapsedTime const& getMinAge() const { return mMinAge; }
    void setMinAge(rktl::ElapsedTime const& age) { mMinAge = age; }
    bool getAlarmBlobs() const { return mAlarmBlobs; }
    void setAlarmBlobs(bool alarm) { mAlarmBlobs = alarm; }

    /// Raises or extends the event of an object. confidence: 0 to 1; -1 takes the highest of the object's confidences in the
    /// spy's classes, or 1 without classes or object. The texts may be null. Returns the uid, or 0 when the cache stays
    /// locked.
    uint32_t addEventObject(
        uint32_t objectId, Frame const& frame, double confidence, char const* subtitle, char const* description);

    /// Rebuilds what depends on the frame size; all running state is lost with it. Does nothing for the size that it has.
    void reserveFrameSize(unsigned int width, unsigned int height);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using EventSpy::toXML;
    /// Blob flag and largest sizes go back to their defaults even when the text is refused.
    bool fromXML(char const* xml) override;
    void findFaults(std::vector<rktl::String>& faults) const override;
    void reset() override;

    /// Runs the rule on a frame, and forgets events whose time is over.
    virtual void spy(ProcessFrame const& frame);
    /// The same, for spies that share what they need of the frame. view: shows this frame.
    void spy(ProcessFrame const& frame, FrameView& view);
    /// Adds what a person has to see of the rule's configuration on a frame: zones, regions, lines.
    virtual void getShapes(std::vector<SpyShape>& shapes) const;
    /// For people, when the rule applies, such as "alarms at 90 +/- 20 deg over 1.0 s, from 60 px on".
    virtual rktl::String getRuleText() const { return getFriendlyName(); }
    /// Adds the images that the spy wants, by name and types.
    virtual void getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const;
    virtual unsigned int getFilterMask() const = 0;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void onCreateXML(rktl::String& xml) const override;
    void onParseXML(rkxml::DomIterator& element) override;
    void onEventCleaned(uint32_t uid) override;

    /// The rule. view() shows the frame meanwhile.
    virtual void internalSpy(ProcessFrame const& frame) = 0;
    virtual void onFrameResize(unsigned int width, unsigned int height);

    FrameView& view() const { return *mView; }

    /// A copy of the frame, without its images, which all objects of a moment share.
    rktl::SmartPtr<Frame> const& keep(Frame const& frame);

    /// The next frame rebuilds what depends on its size.
    void forgetFrameSize() { mFrameWidth = mFrameHeight = 0; }

    /// Whether (x, y) lies in a zone; true without zones. Throws rktl::Exception for a zone of fewer than 3 points.
    bool isInZones(int x, int y) const;
    // For findFaults: polygons need three points, coordinates have to be finite.
    static void findPolygonFault(
        rkml::Polygon2D<float> const& polygon, rktl::String const& what, std::vector<rktl::String>& faults);
    static void findPolygonFaults(rksl::List<rkml::Polygon2D<float>> const& polygons, char const* element, char const* item,
        std::vector<rktl::String>& faults);

    static void addShapes(rksl::List<rkml::Polygon2D<float>> const& polygons, char const* label, std::vector<SpyShape>& shapes);

    bool isWithinMaxSize(rkml::BoundingBox<int> const& box) const
    {
        return box.height <= mMaxHeightPixels && box.width <= mMaxWidthPixels;
    }
    rksl::List<rkml::Polygon2D<int>> const& getPixelZones() const { return mPixelZones; }
    int32_t getMaxWidthPixels() const { return mMaxWidthPixels; }
    int32_t getMaxHeightPixels() const { return mMaxHeightPixels; }
    unsigned int getFrameWidth() const { return mFrameWidth; }
    unsigned int getFrameHeight() const { return mFrameHeight; }

    /// readKey gets each child that is not the base's, and refuses the whole text by false. False when the text is no element
    /// with children, or a child was refused.
    bool unwrapXML(char const* xml, std::function<bool(rkxml::DomIterator&)> const& readKey);

    // The book of which object raised which event; uid 0 for none.
    uint32_t eventOf(uint32_t objectId) const;
    void setEventOf(uint32_t objectId, uint32_t uid);

private:
    void warnOfShapesOutside();
    void boundZones();
    bool isInView(Frame const& frame) const { return mView && mView->isOf(frame); }
    double confidenceOf(uint32_t objectId, Frame const& frame) const;
    Event* eventToExtend(EventCache& cache, uint32_t objectId, Frame const& frame);

    struct ObjectEvent {
        uint32_t objectId;
        uint32_t uid;
    };

    uint32_t mRenamedEvent = 0;             // a merged event that lists objects under more names of the spy than one
    std::vector<ObjectEvent> mObjectEvents; // ascending by object: there may be hundreds, and each cleaned event looks at all
    rksl::List<rkml::Polygon2D<float>> mZones;
    rksl::List<rkml::Polygon2D<int>> mPixelZones; // of the frame size seen last
    rkml::Point2D<int> mZonesFirst, mZonesLast;   // no zone has a pixel outside of these two corners
    float mMaxWidth = 1.0f;
    int32_t mMaxWidthPixels = 0;
    float mMaxHeight = 1.0f;
    int32_t mMaxHeightPixels = 0;
    rksl::List<rktl::String> mClasses;
    unsigned int mFrameWidth = 0;
    unsigned int mFrameHeight = 0;
    uint32_t mMinDistance = 0;
    rktl::ElapsedTime mMinAge;
    bool mAlarmBlobs = false;
    FrameView* mView = nullptr;       // of the frame that is being spied on; otherwise null
    rktl::SmartPtr<Frame> mKeptFrame; // the latest copy that the spy took
};
