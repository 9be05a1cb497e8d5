#pragma once

#include "misc/rktl_String.h"
#include "misc/rktl_UUID.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_StringMap.h"

namespace rktl {
class url;
}

/// The four-level name of a site, machine, camera and spy. "*" in a name means any; a site that is not given is "localsite".
/// A level may also be named by a UUID. As a URL: meridane://machine.site/camera/spy?camera-guid=...
///
/// Binary form: camera, machine, site, spy, then the UUIDs as a map by level name. A plain value; nothing here throws but
/// fromBin.
class MeridaneAddress : public rksl::Serializable {
public:
    enum Level : int { siteLevel, machineLevel, cameraLevel, spyLevel, noLevel };

    /// "site", "machine", "camera", "spy" and "".
    static char const* const AddressLevelStrings[5];
    static constexpr char const* localSite = "localsite";

    MeridaneAddress();
    MeridaneAddress(rktl::String const& camera, rktl::String const& spy, rktl::String const& machine);
    MeridaneAddress(Level level, rktl::UUID const& uuid);
    explicit MeridaneAddress(rktl::url const& url);

    rktl::String const& getSite() const { return mSite; }
    rktl::String const& getMachine() const { return mMachine; }
    rktl::String const& getCamera() const { return mCamera; }
    rktl::String const& getSpy() const { return mSpy; }
    void setSite(rktl::String const& site) { mSite = site; }
    void setMachine(rktl::String const& machine) { mMachine = machine; }
    void setCamera(rktl::String const& camera) { mCamera = camera; }
    void setSpy(rktl::String const& spy) { mSpy = spy; }
    rksl::StringMap<rktl::UUID> const& getGUIDs() const { return mGuids; }

    /// Names a camera, or anything by UUID.
    bool isValid() const;
    /// Names something of that level: by UUID, or by a name that is not "*"; a spy needs its camera too. Level 4 always.
    bool isValid(int level) const;
    /// 3 or 2 when that level is valid, else 1 or 0 for the machine level.
    int getValidLevel() const;

    /// Whether site, and machine, camera and spy as far as level says, are the same. A level below 0: true.
    bool compare(MeridaneAddress const& other, int level) const;

    bool hasGUID(int level) const;
    /// The zero UUID when there is none.
    rktl::UUID getGUID(int level) const;
    /// The zero UUID removes.
    void setGUID(int level, rktl::UUID const& uuid);

    /// display: in words for people, such as "[All Cameras]".
    rktl::String getCameraName(bool display) const;
    rktl::String getSpyName(bool display) const;
    /// The shortest name that still tells.
    rktl::String abbreviate(bool display) const;

    /// Whether the scheme is "meridane".
    static bool validate(rktl::url const& url);
    /// False when the URL is no such address: it is of another scheme (address is as before), names nothing, or has more than
    /// a camera and a spy.
    static bool parse(rktl::url const& url, MeridaneAddress& address);
    bool fromURL(rktl::url const& url) { return parse(url, *this); }
    static rktl::url createURL(rktl::String const& machine, rktl::String const& camera, rktl::String const& spy,
        rktl::String const& site, rksl::StringMap<rktl::UUID> const& guids);
    rktl::String toURL() const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// The root may be called "MeridaneAddress" or "CameraAddress".
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    void defaultSite();

    rktl::String mSite;
    rktl::String mMachine;
    rktl::String mCamera;
    rktl::String mSpy;
    rksl::StringMap<rktl::UUID> mGuids; // by level name
};
