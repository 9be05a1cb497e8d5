#include "BaseClasses/Object.h"

#include "math/rkml_Coordinate.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace {

constexpr char const* defaultType = "Moving";
constexpr char const* staticType = "Static";
constexpr double defaultWindowSeconds = 15;

rkml::BoundingBox<int> scaled(rkml::BoundingBox<int> const& box, double factor)
{
    auto const times = [factor](int value) { return rkml::coordinateCast<int>(value * factor); };
    return {times(box.x), times(box.y), times(box.width), times(box.height)};
}

/// How far a box moved along one axis. At the image's near edge a box grows into view while its near side stands still, so
/// there the far sides are measured.
float displacement(int position, int extent, int previousPosition, int previousExtent)
{
    constexpr int edge = 3; // pixels
    // In 64 bits: the positions of a received object are any.
    int64_t const moved = int64_t(position) - previousPosition;
    if (position < edge || previousPosition < edge)
        return static_cast<float>(moved + extent - previousExtent);
    return static_cast<float>(moved + extent / 2 - previousExtent / 2);
}

} // namespace

Object::Object()
    : Object(defaultType, rktl::ElapsedTime::fromSeconds(defaultWindowSeconds))
{
}

Object::Object(rktl::String const& type, rktl::ElapsedTime const& window)
    : mTrack(Track(window))
    , mHistogram(rkml::ColorHistogram())
    , mType(type)
{
}

// ---- The path ----

unsigned int Object::insert(
    rkml::BoundingBox<int> const& box, rksl::List<rktl::Integer> const& merges, rktl::TimeStamp const& time)
{
    if (!mFirstSeen.isSet())
        mFirstSeen = time;
    if (mFirstBox.width <= 0 || mFirstBox.height <= 0)
        mFirstBox = box;
    // Copies first: the arguments may lie in the path that is about to be left to others, and may go with them.
    Node node{box, merges};
    rktl::TimeStamp const moment = time;
    Track& track = mTrack.change();
    track.insert(std::move(node), moment);
    return static_cast<unsigned int>(track.size());
}

bool Object::newest(rkml::BoundingBox<int>& box) const
{
    if (mTrack->empty())
        return false;
    box = mTrack->newest().mBox;
    return true;
}

bool Object::newest(Node& node, rktl::TimeStamp& time) const
{
    if (mTrack->empty())
        return false;
    node = mTrack->newest();
    time = mTrack->newestTime();
    return true;
}

bool Object::newestTime(rktl::TimeStamp& time) const
{
    if (mTrack->empty())
        return false;
    time = mTrack->newestTime();
    return true;
}

bool Object::newestPosition(rktl::ElapsedTime& position) const
{
    if (mTrack->empty())
        return false;
    position = mTrack->newestTime().toElapsedTime();
    return true;
}

bool Object::oldestPosition(rktl::ElapsedTime& position) const
{
    if (mTrack->empty())
        return false;
    position = mTrack->oldestTime().toElapsedTime();
    return true;
}

bool Object::updateNewest(rkml::BoundingBox<int> const& box)
{
    if (mTrack->empty())
        return false;
    rkml::BoundingBox<int> const copy = box; // it may lie in the path that is about to be left to others
    mTrack.change().newest().mBox = copy;
    return true;
}

rktl::ElapsedTime Object::age() const
{
    return mTrack->empty() ? rktl::ElapsedTime() : mTrack->newestTime() - mFirstSeen;
}

double Object::travel() const
{
    return mTrack->empty() ? 0.0 : mFirstBox.centre().distanceTo(mTrack->newest().mBox.centre());
}

unsigned int Object::getMergeListSize() const
{
    return mTrack->empty() ? 0 : static_cast<unsigned int>(mTrack->newest().mMerges.size());
}

void Object::clearTail()
{
    if (mTrack->empty())
        return;
    Track& track = mTrack.change();
    while (track.size() > 1)
        track.erase(track.begin());
}

void Object::setAverageVel(rkml::BoundingBox<int> const& box)
{
    if (mTrack->empty())
        return;
    rkml::BoundingBox<int> const& previous = mTrack->newest().mBox;
    float const x = displacement(box.x, box.width, previous.x, previous.width);
    float const y = displacement(box.y, box.height, previous.y, previous.height);
    bool const isFirst = mVelocityX == 0.0f && mVelocityY == 0.0f;
    mVelocityX = isFirst ? x : 0.9f * mVelocityX + 0.1f * x;
    mVelocityY = isFirst ? y : 0.9f * mVelocityY + 0.1f * y;
}

bool Object::setEstimatedPosition(rkml::BoundingBox<int> const& box)
{
    mEstimatedPosition = box;
    return true;
}

// ---- Classes ----

double Object::getClassConfidence(rktl::String const& names) const
{
    double confidence = 1.0;
    bool isFound = false;
    for (rktl::String const& name : names.tokenize(",")) {
        auto const found = mClassConfidences.find(name.toLower());
        if (found == mClassConfidences.end())
            continue;
        confidence *= found->second;
        isFound = true;
    }
    return isFound ? confidence : -1.0;
}

rkml::BoundingBox<int> Object::getClassRegion(rktl::String const& name) const
{
    auto const found = mClassRegions.find(name);
    if (found != mClassRegions.end())
        return found->second;
    return mClasses.count(name) ? mTrack->newest().mBox : rkml::BoundingBox<int>();
}

void Object::setClassRegion(rktl::String const& name, rkml::BoundingBox<int> const& box)
{
    if (box.width > 0 && box.height > 0)
        mClassRegions[name] = box;
    else
        mClassRegions.erase(name);
}

// ---- Colours ----

void Object::setHistogram(rkml::ColorHistogram const& histogram)
{
    mHistogram = rktl::CopyOnWrite(histogram);
    std::vector<std::pair<uint32_t, uint32_t>> bins; // count and number; of equal counts the higher number comes first
    bins.reserve(histogram.getBinCount());
    for (uint32_t bin = 0; bin < histogram.getBinCount(); ++bin)
        bins.emplace_back(histogram.getBinValue(bin), bin);
    auto const end = bins.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(bins.size(), 5));
    std::partial_sort(bins.begin(), end, bins.end(), std::greater<>());
    rktl::String palette;
    for (auto bin = bins.begin(); bin != end; ++bin) {
        uint32_t packed = 0;
        histogram.binToColor(bin->second, packed);
        palette += palette.empty() ? "" : "|";
        palette += rktl::String::fromFormat("#%02x%02x%02x", packed & 255, packed >> 8 & 255, packed >> 16 & 255);
    }
    setAttribute("Color Palette", palette);
}

double Object::compareHistogram(Object const& other) const
{
    return 1.0 - mHistogram->distanceTo(*other.mHistogram, rkml::Histogram::DistL1);
}

// ---- The whole ----

void Object::mergeTrack(Object const& other)
{
    for (auto const& [time, node] : *other.mTrack)
        insert(node.mBox, node.mMerges, time);
    if (other.mFirstSeen < mFirstSeen) {
        mFirstSeen = other.mFirstSeen;
        mFirstBox = other.mFirstBox;
    }
    mHistogram.change() += *other.mHistogram;
}

void Object::update(Object const& other)
{
    mFullTrack = other.mFullTrack;
    if (mFullTrack) {
        mTrack = other.mTrack;
    } else if (!other.mTrack->empty() && (mTrack->empty() || other.mTrack->newestTime() != mTrack->newestTime())) {
        Node const& node = other.mTrack->newest();
        insert(node.mBox, node.mMerges, other.mTrack->newestTime());
    }
    mId = other.mId;
    mType = other.mType;
    mFirstSeen = other.mFirstSeen;
    mEstimatedPosition = other.mEstimatedPosition;
    mFirstBox = other.mFirstBox;
    mVelocityX = other.mVelocityX;
    mVelocityY = other.mVelocityY;
    mClasses = other.mClasses;
    mClassConfidences = other.mClassConfidences;
    mState = other.mState;
    mClassRegions = other.mClassRegions;
    mAttributes = other.mAttributes;
}

void Object::scale(double factor)
{
    for (auto& [time, node] : mTrack.change())
        node.mBox = scaled(node.mBox, factor);
    mFirstBox = scaled(mFirstBox, factor);
    for (auto& [name, box] : mClassRegions)
        box = scaled(box, factor);
}

// ---- Stored ----

void Object::serializeTrack(rksl::MemIOStream& stream) const
{
    Track const& track = *mTrack;
    stream << (track.empty() ? rktl::ElapsedTime() : track.newestTime() - track.oldestTime());
    if (mFullTrack && mType != staticType)
        for (auto const& [time, node] : track)
            stream << time << node.mBox << node.mMerges;
    else if (track.empty())
        stream << rktl::TimeStamp() << rkml::BoundingBox<int>() << rksl::List<rktl::Integer>();
    else
        stream << track.newestTime() << track.newest().mBox << track.newest().mMerges;
}

void Object::unserializeTrack(rksl::MemIOStream& stream)
{
    rktl::ElapsedTime span;
    stream >> span;
    Track& track = mTrack.change();
    if (mFullTrack)
        track = Track(std::max(track.getWindow(), span));
    while (!stream.isEmpty()) {
        rktl::TimeStamp time;
        Node node;
        stream >> time >> node.mBox >> node.mMerges;
        track.insert(std::move(node), time);
    }
}

unsigned int Object::getTypeId() const
{
    return 4;
}

rktl::String Object::getTypeName() const
{
    return "Object";
}

rktl::String Object::toXML() const
{
    return toXML("Object");
}

rktl::String Object::toXML(char const*) const
{
    throw rktl::Exception("Object::toXML( ) - not implemented");
}

bool Object::fromXML(char const*)
{
    throw rktl::Exception("Object::fromXML( ) - not implemented");
}

unsigned int Object::getBinLength() const
{
    rksl::MemIOStream track;
    serializeTrack(track);
    return 4 + 1 + track.getBinLength() + mFirstSeen.getBinLength() + mType.getBinLength() + mEstimatedPosition.getBinLength() +
        mFirstBox.getBinLength() + 4 + 4 + mClasses.getBinLength() + mClassConfidences.getBinLength() + 4 +
        mClassRegions.getBinLength() + mAttributes->getBinLength() + mHistogram->getBinLength();
}

unsigned int Object::toBin(unsigned char* out) const
{
    rksl::MemIOStream track;
    serializeTrack(track);
    rksl::ByteWriter writer(out);
    writer.u32(mId);
    writer.u8(mFullTrack ? 1 : 0);
    writer.record(track);
    writer.record(mFirstSeen);
    writer.record(mType);
    writer.record(mEstimatedPosition);
    writer.record(mFirstBox);
    writer.f32(mVelocityX);
    writer.f32(mVelocityY);
    writer.record(mClasses);
    writer.record(mClassConfidences);
    writer.i32(mState);
    writer.record(mClassRegions);
    writer.record(*mAttributes);
    writer.record(*mHistogram);
    return writer.written();
}

unsigned int Object::fromBin(unsigned char const* in, unsigned int length)
{
    Object read(*this); // a body that breaks off changes nothing
    unsigned int const used = read.readFields(in, length);
    *this = read;
    return used;
}

unsigned int Object::readFields(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    mId = reader.u32();
    mFullTrack = reader.u8() != 0;
    rksl::MemIOStream track;
    reader.record(track);
    unserializeTrack(track);
    reader.record(mFirstSeen);
    reader.record(mType);
    reader.record(mEstimatedPosition);
    reader.record(mFirstBox);
    mVelocityX = reader.f32();
    mVelocityY = reader.f32();
    reader.record(mClasses);
    reader.record(mClassConfidences);
    mState = reader.i32();
    reader.record(mClassRegions);
    reader.record(mAttributes.change());
    reader.record(mHistogram.change());
    return reader.position();
}
