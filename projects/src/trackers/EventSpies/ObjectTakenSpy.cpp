#include "trackers/EventSpies/ObjectTakenSpy.h"

#include "BaseClasses/ProcessFrame.h"
#include "misc/rktl_Double.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <limits>

namespace {

constexpr char const* imageName = "Native Image";
constexpr uint32_t pauseFlags = Frame::pause | Frame::longPause;
constexpr uint32_t pauseTime = 2000; // ms

float toFloat(double value)
{
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -largest, largest));
}

} // namespace

ObjectTakenSpy::ObjectTakenSpy()
    : FrameEventSpy("", "")
{
}

ObjectTakenSpy::ObjectTakenSpy(ObjectTakenSpy const& other)
    : FrameEventSpy(other)
{
    *this = other;
}

ObjectTakenSpy& ObjectTakenSpy::operator=(ObjectTakenSpy const& other)
{
    if (this == &other)
        return *this;
    FrameEventSpy::operator=(other);
    mEventUid = 0;
    mAsset = other.mAsset;
    mReplaceAlarm = other.mReplaceAlarm;
    reset();
    return *this;
}

void ObjectTakenSpy::setRegion(rkml::Polygon2D<float> const& region)
{
    mAsset.setRegion(region);
    forgetFrameSize();
}

unsigned int ObjectTakenSpy::getTypeId() const
{
    return 1012;
}

rktl::String ObjectTakenSpy::getTypeName() const
{
    return "ObjectTakenSpy";
}

ObjectTakenSpy* ObjectTakenSpy::clone() const
{
    return new ObjectTakenSpy(*this);
}

rktl::String ObjectTakenSpy::getFriendlyName() const
{
    return "Object Taken";
}

unsigned int ObjectTakenSpy::getFilterMask() const
{
    return 0;
}

void ObjectTakenSpy::getRequiredImageTypes(rksl::StringMap<rktl::Integer>& types) const
{
    types[imageName] = rkil::MultiImage::flatColour | rkil::MultiImage::flatGray;
}

void ObjectTakenSpy::reset()
{
    FrameEventSpy::reset();
    mAsset.reset();
}

void ObjectTakenSpy::onFrameResize(unsigned int width, unsigned int height)
{
    mAsset.resize(width, height);
    if (width != 0 && height != 0 && mAsset.getRegion().points().size() > 2 && !mAsset.hasCells())
        log(rktl::LogType::Warning,
            rktl::String::fromFormat(
                "the asset is smaller than 16x16 pixels in a frame of %ux%u: it counts as changed", width, height));
}

void ObjectTakenSpy::findFaults(std::vector<rktl::String>& faults) const
{
    FrameEventSpy::findFaults(faults);
    findPolygonFault(mAsset.getRegion(), "region", faults);
}

void ObjectTakenSpy::getShapes(std::vector<SpyShape>& shapes) const
{
    shapes.push_back({"asset", mAsset.getRegion()});
}

rktl::String ObjectTakenSpy::getRuleText() const
{
    return rktl::String::fromFormat("alarms when the asset is taken%s, at a sensitivity of %.3g",
        getReplaceAlarm() ? " or comes back" : "", double(mAsset.getSensitivity()));
}

// ---- The rule ----

void ObjectTakenSpy::internalSpy(ProcessFrame const& frame)
{
    if (mAsset.getRegion().points().size() < 3 || isPaused(frame) || hasOverlap(frame.getObjects()))
        return;
    float confidence = -1.0f;
    switch (lookAt(frame, confidence)) {
    case ObjectTaken::changed:
        mEventUid = addEventFrame(mEventUid, frame, static_cast<double>(confidence), nullptr, nullptr);
        break;
    case ObjectTaken::returned:
        if (mReplaceAlarm != 0)
            addEventFrame(0, frame, static_cast<double>(confidence), "Replaced", nullptr);
        mEventUid = 0;
        break;
    default:
        break;
    }
}

bool ObjectTakenSpy::isPaused(Frame const& frame)
{
    bool const wasPaused = !mCountdown.hasExpired();
    bool const pauses = (frame.getFlags() & pauseFlags) != 0;
    if (pauses && !wasPaused)
        mCountdown.start(pauseTime);
    return pauses || wasPaused;
}

ObjectTaken::Result ObjectTakenSpy::lookAt(ProcessFrame const& frame, float& confidence)
{
    if (!frame.isImageSet(imageName, rkil::MultiImage::flatGray))
        return ObjectTaken::nothing;
    rktl::ElapsedTime const time(static_cast<uint32_t>(frame.getPosition().toMilliseconds()));
    rkil::MultiImage const& image = frame.getMultiImage(imageName);
    rk_image const& gray = *image.getFlatGray().getImage();
    if (!frame.isImageSet(imageName, rkil::MultiImage::flatColour))
        return mAsset.process(time, gray, confidence);
    return mAsset.process(time, gray, *image.getFlatColour().getImage(), confidence);
}

bool ObjectTakenSpy::hasOverlap(ObjectMap const& objects) const
{
    return std::any_of(objects.begin(), objects.end(), [this](auto const& entry) {
        Object const& object = entry.second;
        rkml::BoundingBox<int> box;
        return object.getState() > Object::purged && object.getType() != "Static" && object.newest(box) &&
            mAsset.getMask().getOverlap(box, 1) > 0.0;
    });
}

// ---- Forms ----

rktl::String ObjectTakenSpy::toXML(char const* tag) const
{
    return wrapXML(tag,
        rktl::Double(static_cast<double>(mAsset.getSensitivity())).toXML("sensitivity") +
            mAsset.getRegion().toXML("region", "vertex") + (mReplaceAlarm != 0 ? "<replace-alarm/>" : ""));
}

bool ObjectTakenSpy::fromXML(char const* xml)
{
    bool const isRead = unwrapXML(xml, [this](rkxml::DomIterator& element) {
        rktl::String const name = element.getName();
        rktl::String const text = element.toXML();
        if (name == "sensitivity") {
            rktl::Double sensitivity;
            sensitivity.fromXML(text.c_str());
            mAsset.setSensitivity(toFloat(sensitivity));
        } else if (name == "region") {
            rkml::Polygon2D<float> region;
            region.fromXML(text.c_str());
            setRegion(region);
        } else if (name == "replace-alarm") {
            mReplaceAlarm = 1;
        }
        return true;
    });
    if (isRead)
        reset();
    return isRead;
}

bool ObjectTakenSpy::serialize(rksl::MemIOStream& stream) const
{
    if (!FrameEventSpy::serialize(stream))
        return false;
    stream << rktl::Double(static_cast<double>(mAsset.getSensitivity())) << mAsset.getRegion() << mReplaceAlarm;
    return true;
}

bool ObjectTakenSpy::unserialize(rksl::MemIOStream& stream)
{
    if (!FrameEventSpy::unserialize(stream))
        return false;
    rktl::Double sensitivity;
    rkml::Polygon2D<float> region;
    stream >> sensitivity >> region >> mReplaceAlarm;
    mAsset.setSensitivity(toFloat(sensitivity));
    setRegion(region);
    reset();
    return true;
}
