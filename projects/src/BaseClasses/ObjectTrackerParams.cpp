#include "BaseClasses/ObjectTrackerParams.h"

#include "math/rk_geometry.h"
#include "streams/rkxml_DomIterator.h"

ObjectTrackerParams::ObjectTrackerParams()
    : ProcessParams("ObjectTracker")
    , mResurrectionWindow(rktl::ElapsedTime::fromSeconds(-15))
    , mInvalidWindow(rktl::ElapsedTime::fromSeconds(10))
    , mDeferTime(rktl::ElapsedTime::fromSeconds(1))
{
}

rksl::MemIOStream ObjectTrackerParams::binSerialize() const
{
    rksl::MemIOStream stream;
    stream << mResurrectionWindow << mResurrectionDistance << mResurrectionConfidence << mRemoveFalseObjects
           << mAdvancedHistograms << mInvalidWindow << mDeferTime << mOcclusionZones << mAdvancedObjectFeatures
           << mAlwaysUpdateHistograms << mMinTrackLength << mMaxTrackMerges;
    return stream;
}

bool ObjectTrackerParams::binUnserialize(rksl::MemIOStream const& stream)
{
    rksl::MemIOStream const before = binSerialize();
    try {
        readFields(stream);
    } catch (std::exception const&) {
        readFields(before);
        return false;
    }
    return true;
}

void ObjectTrackerParams::readFields(rksl::MemIOStream stream)
{
    stream >> mResurrectionWindow >> mResurrectionDistance >> mResurrectionConfidence >> mRemoveFalseObjects >>
        mAdvancedHistograms >> mInvalidWindow >> mDeferTime >> mOcclusionZones >> mAdvancedObjectFeatures >>
        mAlwaysUpdateHistograms >> mMinTrackLength >> mMaxTrackMerges;
}

rktl::String ObjectTrackerParams::xmlSerialize() const
{
    rktl::String xml;
    auto const line = [&xml](rktl::String const& element) { xml += element + "\n"; };
    auto const flag = [&line](rktl::Integer const& value, char const* element) {
        if (value)
            line(element);
    };
    line(mResurrectionWindow.toXML("resurrection-window"));
    line(mResurrectionDistance.toXML("resurrection-distance"));
    line(mResurrectionConfidence.toXML("resurrection-confidence"));
    flag(mRemoveFalseObjects, "<remove-false-objects/>");
    flag(mAdvancedHistograms, "<advanced-histograms/>");
    flag(mAdvancedObjectFeatures, "<advanced-object-features/>");
    line(mInvalidWindow.toXML("invalid-window"));
    line(mDeferTime.toXML("defer-time"));
    flag(mAlwaysUpdateHistograms, "<always-update-histograms/>");
    line(mMinTrackLength.toXML("min-track-length"));
    line(mMaxTrackMerges.toXML("max-track-merges"));
    if (mOcclusionZones.empty()) {
        line("<occlusion-zones/>");
        return xml;
    }
    line("<occlusion-zones>");
    for (auto const& zone : mOcclusionZones)
        line(zone.toXML("zone", "vertex"));
    line("</occlusion-zones>");
    return xml;
}

void ObjectTrackerParams::clearFlags()
{
    mRemoveFalseObjects = mAdvancedHistograms = mAdvancedObjectFeatures = mAlwaysUpdateHistograms = 0;
}

bool ObjectTrackerParams::xmlUnserialize(rktl::String const& xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse("<TempTag>" + xml + "</TempTag>");
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    mOcclusionZones.clear();
    clearFlags();
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
        readElement(cursor.getName(), cursor.toXML().c_str());
    return true;
}

void ObjectTrackerParams::readElement(rktl::String const& name, char const* xml)
{
    if (name == "resurrection-window")
        mResurrectionWindow.fromXML(xml);
    else if (name == "resurrection-distance")
        mResurrectionDistance.fromXML(xml);
    else if (name == "resurrection-confidence")
        mResurrectionConfidence.fromXML(xml);
    else if (name == "remove-false-objects")
        mRemoveFalseObjects = 1;
    else if (name == "advanced-histograms")
        mAdvancedHistograms = 1;
    else if (name == "advanced-object-features")
        mAdvancedObjectFeatures = 1;
    else if (name == "always-update-histograms")
        mAlwaysUpdateHistograms = 1;
    else if (name == "invalid-window")
        mInvalidWindow.fromXML(xml);
    else if (name == "defer-time")
        mDeferTime.fromXML(xml);
    else if (name == "occlusion-zones")
        mOcclusionZones.fromXML(xml);
    else if (name == "min-track-length")
        mMinTrackLength.fromXML(xml);
    else if (name == "max-track-merges")
        mMaxTrackMerges.fromXML(xml);
}

bool ObjectTrackerParams::generateOcclusions(
    unsigned int width, unsigned int height, double scale, Zones const& zones, std::list<rk_segment>& segments)
{
    if (width == 0 || height == 0)
        return false;
    segments.clear();
    for (rkml::Polygon2D<float> const& zone : zones) {
        rkml::Polygon2D<double> scaled;
        for (rkml::Point2D<float> const& vertex : zone.points())
            scaled.points().push_back(
                vertex.isNormalized() ? vertex.denormalize<double>(width * scale, height * scale) : vertex.convert<double>());
        std::vector<rkml::LineSegment2D<int>> sides;
        rkml::Polygon2D<int>(scaled).getSegments(sides);
        for (rkml::LineSegment2D<int> const& side : sides)
            segments.push_back({side.first().x, side.first().y, side.second().x, side.second().y});
    }
    return true;
}
