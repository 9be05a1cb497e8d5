#include "BaseClasses/MeridaneAddress.h"

#include "misc/rktl_url.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "streams/rkxml_DomIterator.h"

#include <vector>

namespace {

constexpr char const* scheme = "meridane";
constexpr char const* any = "*";

rktl::String levelName(int level)
{
    return level >= 0 && level < MeridaneAddress::noLevel ? MeridaneAddress::AddressLevelStrings[level] : "";
}

rktl::String guidKey(int level)
{
    return levelName(level) + "-guid";
}

std::vector<rktl::String> pieces(rktl::String const& text, char const* delimiters)
{
    auto const tokens = text.tokenize(delimiters);
    return {tokens.begin(), tokens.end()};
}

} // namespace

char const* const MeridaneAddress::AddressLevelStrings[5] = {"site", "machine", "camera", "spy", ""};

MeridaneAddress::MeridaneAddress()
    : mSite(localSite)
{
}

MeridaneAddress::MeridaneAddress(rktl::String const& camera, rktl::String const& spy, rktl::String const& machine)
    : mSite(localSite)
    , mMachine(machine)
    , mCamera(camera)
    , mSpy(spy)
{
}

MeridaneAddress::MeridaneAddress(Level level, rktl::UUID const& uuid)
    : mSite(localSite)
{
    setGUID(level, uuid);
}

MeridaneAddress::MeridaneAddress(rktl::url const& url)
    : MeridaneAddress()
{
    fromURL(url);
}

bool MeridaneAddress::isValid() const
{
    return !mCamera.empty() || !mGuids.empty();
}

bool MeridaneAddress::isValid(int level) const
{
    if (hasGUID(level) || level >= noLevel)
        return true;
    switch (level) {
    case siteLevel:
        return !mSite.empty() && mSite != any;
    case machineLevel:
        return !mMachine.empty() && mMachine != any;
    case cameraLevel:
        return !mCamera.empty() && mCamera != any;
    case spyLevel:
        return !mSpy.empty() && mSpy != any && (!mCamera.empty() || hasGUID(cameraLevel));
    default:
        return false;
    }
}

int MeridaneAddress::getValidLevel() const
{
    if (isValid(spyLevel))
        return spyLevel;
    if (isValid(cameraLevel))
        return cameraLevel;
    return isValid(machineLevel) ? 1 : 0;
}

bool MeridaneAddress::compare(MeridaneAddress const& other, int level) const
{
    return level < siteLevel ||
        (mSite == other.mSite && (level < machineLevel || mMachine == other.mMachine) &&
            (level < cameraLevel || mCamera == other.mCamera) && (level < spyLevel || mSpy == other.mSpy));
}

bool MeridaneAddress::hasGUID(int level) const
{
    return mGuids.count(levelName(level)) > 0;
}

rktl::UUID MeridaneAddress::getGUID(int level) const
{
    rktl::UUID uuid;
    mGuids.peek(levelName(level), uuid);
    return uuid;
}

void MeridaneAddress::setGUID(int level, rktl::UUID const& uuid)
{
    rktl::String const name = levelName(level);
    if (uuid.isValid() && !name.empty())
        mGuids[name] = uuid;
    else
        mGuids.erase(name);
}

rktl::String MeridaneAddress::getCameraName(bool display) const
{
    if (!display || mCamera != any)
        return mCamera;
    if (mMachine == "rk-webserver")
        return "[Input Triggers]";
    if (mSpy == "rk-auditspy")
        return "[System Events]";
    if (!mSpy.empty() && mSpy != any)
        return "[Compound Events]";
    return "[All Cameras]";
}

rktl::String MeridaneAddress::getSpyName(bool display) const
{
    if (display && mSpy == any)
        return "[All Events]";
    if (display && mSpy == "rk-auditspy")
        return "[Audit Events]";
    return mSpy;
}

rktl::String MeridaneAddress::abbreviate(bool display) const
{
    if (!mSpy.empty())
        return getCameraName(display) + ":" + getSpyName(display);
    if (!mCamera.empty())
        return getCameraName(display);
    return !mMachine.empty() ? mMachine : mSite;
}

// ---- As a URL ----

bool MeridaneAddress::validate(rktl::url const& url)
{
    return !url.mScheme.empty() && url.mScheme.iCompare(scheme) == 0;
}

bool MeridaneAddress::parse(rktl::url const& url, MeridaneAddress& address)
{
    if (!validate(url))
        return false;
    address = MeridaneAddress();
    for (int level = siteLevel; level < noLevel; ++level) {
        rktl::String text;
        rktl::UUID uuid;
        if (url.mQuery.peek(guidKey(level), text) && uuid.fromString(text))
            address.setGUID(level, uuid);
    }
    std::vector<rktl::String> host = pieces(url.mHost, ".");
    if (host.empty() && address.mGuids.empty())
        return false;
    if (!host.empty()) {
        address.mSite = host.back();
        host.pop_back();
        address.mMachine = rktl::String::join(host, ".");
    }
    std::vector<rktl::String> const path = pieces(url.mPath, "/\\");
    if (path.size() > 2)
        return false;
    if (path.size() > 0)
        address.mCamera = path[0];
    if (path.size() > 1)
        address.mSpy = path[1];
    return true;
}

rktl::url MeridaneAddress::createURL(rktl::String const& machine, rktl::String const& camera, rktl::String const& spy,
    rktl::String const& site, rksl::StringMap<rktl::UUID> const& guids)
{
    rktl::url url;
    url.mScheme = scheme;
    url.mHost = machine + "." + (site.empty() ? rktl::String(localSite) : site);
    url.mPath = camera + "/" + spy;
    for (auto const& [level, uuid] : guids)
        url.mQuery[level + "-guid"] = uuid.toString();
    return url;
}

rktl::String MeridaneAddress::toURL() const
{
    return createURL(mMachine, mCamera, mSpy, mSite, mGuids);
}

void MeridaneAddress::defaultSite()
{
    if (mSite.empty())
        mSite = localSite;
}

// ---- Stored ----

unsigned int MeridaneAddress::getTypeId() const
{
    return 20;
}

rktl::String MeridaneAddress::getTypeName() const
{
    return "MeridaneAddress";
}

rktl::String MeridaneAddress::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    return "<" + name + ">" + mCamera.toXML("camera-name") + mMachine.toXML("machine-name") + mSite.toXML("site-name") +
        mSpy.toXML("spy-name") + mGuids.toXML("guids") + "</" + name + ">";
}

bool MeridaneAddress::fromXML(char const* xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(xml);
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    if (cursor.getName() != "MeridaneAddress" && cursor.getName() != "CameraAddress")
        return false;
    *this = MeridaneAddress();
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling()) {
        rktl::String const name = cursor.getName();
        if (name == "camera-name")
            mCamera = cursor.getValue();
        else if (name == "machine-name")
            mMachine = cursor.getValue();
        else if (name == "site-name")
            mSite = cursor.getValue();
        else if (name == "spy-name")
            mSpy = cursor.getValue();
        else if (name == "guids")
            mGuids.fromXML(cursor.toXML().c_str());
    }
    defaultSite();
    return true;
}

unsigned int MeridaneAddress::getBinLength() const
{
    return mCamera.getBinLength() + mMachine.getBinLength() + mSite.getBinLength() + mSpy.getBinLength() + mGuids.getBinLength();
}

unsigned int MeridaneAddress::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.record(mCamera);
    writer.record(mMachine);
    writer.record(mSite);
    writer.record(mSpy);
    writer.record(mGuids);
    return writer.written();
}

unsigned int MeridaneAddress::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    reader.record(mCamera);
    reader.record(mMachine);
    reader.record(mSite);
    reader.record(mSpy);
    reader.record(mGuids);
    defaultSite();
    return reader.position();
}
