#include "BaseClasses/Frame.h"

#include "misc/rktl_Exception.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_url.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "video/rkvl_Resolution.h"

#include <cstdlib>

namespace {

constexpr char const* originKey = "frame-origin";
constexpr char const* fpsKey = "processing-frame-rate";
constexpr char const* resolutionKey = "native-resolution";

rktl::Exception failure(char const* message)
{
    return rktl::Exception("projects/src/BaseClasses/Frame", "Frame", message);
}

} // namespace

void Frame::setTimePosition(rktl::TimeStamp const& time, rktl::ElapsedTime const& position)
{
    mTimeStamp = time;
    mPosition = position;
}

bool Frame::setOrigin(rktl::String const& origin)
{
    rktl::String const text = origin;
    if (text.empty())
        return false;
    setAttribute(originKey, text);
    return true;
}

rktl::String const& Frame::getOrigin() const
{
    return getAttribute(originKey);
}

void Frame::setProcessFps(double fps)
{
    setAttribute(fpsKey, rktl::String::fromFormat("%f", fps));
}

double Frame::getProcessFps() const
{
    return strtod(getAttribute(fpsKey).c_str(), nullptr);
}

bool Frame::getNativeResolution(rkvl::Resolution& resolution) const
{
    rktl::String const& text = getAttribute(resolutionKey);
    return !text.empty() && resolution.fromString(text);
}

void Frame::setScale(double scale)
{
    if (mScale > 0.0)
        mScale = rktl::Double(scale);
}

Object const* Frame::getObject(unsigned int id) const
{
    return mObjects->findObject(id);
}

bool Frame::getObject(unsigned int id, Object& object) const
{
    Object const* const found = mObjects->findObject(id);
    if (!found)
        return false;
    object = *found;
    return true;
}

bool Frame::removeObject(unsigned int id)
{
    return mObjects.change().erase(rktl::Integer(static_cast<int32_t>(id))) > 0;
}

void Frame::setFullTracks()
{
    if (mHasFullTracks)
        return;
    if (!std::ranges::all_of(*mObjects, [](auto const& entry) { return entry.second.isFullTrack(); }))
        for (auto& [id, object] : mObjects.change())
            object.setFullTrack(true);
    mHasFullTracks = true;
}

rkil::MultiImage& Frame::image(rktl::String const& name)
{
    auto const found = mImages.find(name);
    return found != mImages.end() ? found->second : mImages.try_emplace(name, 1u).first->second;
}

void Frame::setImage(rktl::String const& name, rkil::ImageBase const& source, unsigned int types)
{
    rkil::MultiImage& target = image(name);
    target.setTypes(types);
    target = source;
}

rkil::MultiImage const& Frame::getMultiImage(rktl::String const& name) const
{
    auto const found = mImages.find(name);
    if (found == mImages.end())
        throw failure("getImage() - image type not set");
    return found->second;
}

bool Frame::isImageSet(rktl::String const& name, unsigned int types) const
{
    auto const found = mImages.find(name);
    return found != mImages.end() && !found->second.empty() && (found->second.getTypes() & types) != 0;
}

void Frame::clearImage(rktl::String const& name)
{
    auto const found = mImages.find(name);
    if (found != mImages.end())
        found->second.clear();
}

void Frame::clearImages()
{
    mImages.clear();
}

void Frame::clear()
{
    clearButImages();
    mImages.clear();
}

void Frame::clearButImages()
{
    mAttributes = {};
    mTimeStamp = rktl::TimeStamp();
    mPosition = rktl::ElapsedTime();
    mObjects = {};
    mImageNames.clear();
    mScale = rktl::Double(1.0);
    mFlags = 0;
}

void Frame::setFrom(Frame const& other)
{
    setFromWithoutImages(other);
    mImages = other.mImages;
}

void Frame::setFromWithoutImages(Frame const& other)
{
    mFlags = other.mFlags;
    mScale = other.mScale;
    mTimeStamp = other.mTimeStamp;
    mPosition = other.mPosition;
    mAttributes = other.mAttributes;
    mObjects = other.mObjects;
    mHasFullTracks = other.mHasFullTracks;
}

bool Frame::operator==(Frame const& other) const
{
    return mTimeStamp == other.mTimeStamp && getOrigin() == other.getOrigin();
}

bool Frame::operator<(Frame const& other) const
{
    return mTimeStamp != other.mTimeStamp ? mTimeStamp < other.mTimeStamp : getOrigin() < other.getOrigin();
}

unsigned int Frame::getTypeId() const
{
    return 3;
}

rktl::String Frame::getTypeName() const
{
    return "Frame";
}

rktl::String Frame::toXML(char const*) const
{
    throw failure("toXML() - not implemented");
}

bool Frame::fromXML(char const*)
{
    throw failure("fromXML() - not implemented");
}

rkil::MultiImage const* Frame::imageToWrite(rktl::String const& name) const
{
    auto const found = mImages.find(name);
    return found != mImages.end() ? &found->second : nullptr;
}

unsigned int Frame::countedImages() const
{
    unsigned int count = 0;
    for (rktl::String const& name : mImageNames)
        count += imageToWrite(name) ? 1 : 0;
    return count;
}

unsigned int Frame::getBinLength() const
{
    unsigned int length = mTimeStamp.getBinLength() + mPosition.getBinLength() + 4 + mAttributes->getBinLength() + 1;
    if (mHasObjects)
        length += mObjects->getBinLength();
    length += mImageNames.getBinLength() + 4;
    for (rktl::String const& name : mImageNames) {
        if (rkil::MultiImage const* const written = imageToWrite(name))
            length += name.getBinLength() + written->getBinLength();
    }
    return length;
}

unsigned int Frame::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.record(mTimeStamp);
    writer.record(mPosition);
    writer.u32(mFlags);
    writer.record(*mAttributes);
    writer.u8(mHasObjects ? 1 : 0);
    if (mHasObjects)
        writer.record(*mObjects);
    writer.record(mImageNames);
    writer.u32(countedImages());
    for (rktl::String const& name : mImageNames) {
        rkil::MultiImage const* const written = imageToWrite(name);
        if (!written)
            continue;
        writer.record(name);
        writer.record(*written);
    }
    return writer.written();
}

unsigned int Frame::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    reader.record(mTimeStamp);
    reader.record(mPosition);
    mFlags = reader.u32();
    reader.record(mAttributes.change());
    mHasObjects = reader.u8() != 0;
    mObjects = {};
    if (mHasObjects)
        reader.record(changeObjects());
    reader.record(mImageNames);
    mImages.clear();
    // A name takes 5 bytes at least, and an image its code and a length.
    uint32_t const images = reader.count(5 + 8);
    for (uint32_t i = 0; i < images; ++i) {
        rktl::String name;
        reader.record(name);
        rkil::MultiImage read(1);
        reader.record(read);
        mImages.emplace(name, std::move(read));
    }
    return reader.position();
}
