#include "Outputs.h"
#include "Words.h"

#include "BaseClasses/Frame.h"
#include "BaseClasses/Heartbeat.h"
#include "misc/rk_clock.h"
#include "support/Dump.h"
#include "support/ObjectPainter.h"

#include <map>
#include <stdexcept>

namespace tools {

namespace {

constexpr uint32_t STATUS_PERIOD = 1000; // ms
constexpr int64_t PATH_WINDOW = 15000;   // ms
constexpr Rgb GONE = {142, 142, 147};

struct StateLook {
    int32_t state;
    char const* word;
    Rgb colour;
};

constexpr StateLook STATES[] = {
    {Object::invalid, "invalid", GONE},
    {Object::removed, "removed", GONE},
    {Object::nascent, "new", {10, 132, 255}},
    {Object::purged, "gone", GONE},
    {Object::tracked, "tracked", {36, 138, 61}},
    {Object::resurrected, "resurrected", {137, 68, 171}},
    {Object::lost, "lost", {201, 52, 0}},
};

StateLook lookOf(Object const& object)
{
    for (StateLook const& look : STATES)
        if (look.state == object.getState())
            return look;
    return {object.getState(), "unknown", GONE};
}

void drawObjects(RgbImage& picture, uint32_t scale, ObjectMap const& objects)
{
    ObjectPainter painter(picture, scale);
    for (auto const& [id, object] : objects)
        if (!object.getTrack().empty())
            painter.path(ObjectPath(object, std::nullopt));
    for (auto const& [id, object] : objects) {
        rkml::BoundingBox<int> box;
        StateLook const look = lookOf(object);
        if (object.newest(box))
            painter.box(box, std::to_string(object.getId()) + " " + look.word + classText(object), look.colour);
    }
}

/// "3 objects (2 tracked, 1 lost)".
std::string countText(ObjectMap const& objects)
{
    std::map<std::string, int> states;
    for (auto const& [id, object] : objects)
        ++states[lookOf(object).word];
    std::string parts;
    for (auto const& [word, count] : states)
        parts += (parts.empty() ? " (" : ", ") + std::to_string(count) + " " + word;
    return std::to_string(objects.size()) + (objects.size() == 1 ? " object" : " objects") + parts + (parts.empty() ? "" : ")");
}

} // namespace

// ---- TrackPrinter ----

bool TrackPrinter::onFrame(Frame& frame)
{
    mOut << jsonLine(receivedFrameJson(mFrames, frame)) << std::endl;
    if (!mOut)
        throw std::runtime_error("the standard output cannot be written");
    return ++mFrames != mLimit;
}

// ---- PictureWriter ----

PictureWriter::PictureWriter(Options const& options)
    : mOptions(options)
{
    std::filesystem::create_directories(options.folder);
}

bool PictureWriter::onFrame(Frame& frame)
{
    mObjects.update(frame.getObjects(), rktl::ElapsedTime(PATH_WINDOW));
    bool any = false;
    if (mOptions.names.empty()) {
        for (rktl::String const& name : frame.getImageNames())
            any |= isFileWord(name) && write(frame, name);
    } else {
        for (std::string const& name : mOptions.names)
            any |= write(frame, name);
    }
    ++mFrames;
    mWritten += any;
    return mWritten == 0 || mWritten != mOptions.limit;
}

/// False when the frame came without it.
bool PictureWriter::write(Frame const& frame, std::string const& name) const
{
    using rkil::MultiImage;
    bool const isColour = frame.isImageSet(name, MultiImage::flatColour);
    if (!isColour && !frame.isImageSet(name, MultiImage::flatGray))
        return false;
    MultiImage const& forms = frame.getMultiImage(name);
    rk_image const& image = isColour ? *forms.getFlatColour().getImage() : *forms.getFlatGray().getImage();
    if (!rk_image_valid(&image))
        return false;
    uint32_t const scale = mOptions.overlay ? drawingScale(image.width, image.height) : 1;
    RgbImage picture = toRgb(image, scale);
    if (mOptions.overlay)
        drawObjects(picture, scale, mObjects);
    writeImage(mOptions.folder / dump::imageFileName(mFrames, name, ".png"), picture);
    return true;
}

// ---- Recorder ----

bool Recorder::onFrame(Frame&)
{
    return ++mFrames != mLimit;
}

// ---- StatusLine ----

StatusLine::StatusLine(std::ostream& out, bool isTerminal)
    : mOut(out)
    , mIsTerminal(isTerminal)
    , mSince(rk_tickcount())
    , mHeartbeatTick(mSince)
{
}

StatusLine::~StatusLine()
{
    if (mDrawn && mIsTerminal)
        mOut << std::endl;
}

bool StatusLine::onFrame(Frame& frame)
{
    ++mFrames;
    mObjects = countText(frame.getObjects());
    onIdle();
    return true;
}

void StatusLine::onHeartbeat(Heartbeat const& heartbeat)
{
    mHeartbeatTick = rk_tickcount();
    rktl::String const position = heartbeat.getAttribute("video-position");
    mVideo.clear();
    if (heartbeat.getAttribute("video-loss").toBool())
        mVideo += ", NO VIDEO";
    if (!position.empty())
        mVideo += ", video at " + printable(position);
    if (heartbeat.getAttribute("video-finished").toBool())
        mVideo += ", finished";
}

void StatusLine::onIdle()
{
    uint32_t const now = rk_tickcount();
    if (now - mSince >= STATUS_PERIOD)
        show(now);
}

void StatusLine::show(uint32_t now)
{
    rktl::String const rate = rktl::String::fromFormat("%.1f frames/s", double(mFrames) * 1000 / (now - mSince));
    mOut << (mIsTerminal ? "\r" : "") << rktl::TimeStamp::systemTime().toString("%H:%M:%S") << "  " << rate << ", " << mObjects
         << ", heartbeat " << (now - mHeartbeatTick) / 1000 << " s ago" << mVideo << (mIsTerminal ? "\x1b[K" : "\n")
         << std::flush;
    if (!mOut)
        throw std::runtime_error("the standard output cannot be written");
    mDrawn = true;
    mSince = now;
    mFrames = 0;
}

} // namespace tools
