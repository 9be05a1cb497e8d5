#pragma once

#include "BaseClasses/CameraGroup.h"
#include "misc/rktl_Attributes.h"
#include "misc/rktl_Integer.h"
#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_StringMap.h"

#include <map>

/// Machines by name, each with the cameras on it and the status of them all. A plain value; nothing throws but fromBin.
///
/// Binary form: the XML form as one text. XML form: a <machine> for each, with <machine-attributes> and <camera> in it.
class CameraMap : public rksl::Serializable {
public:
    /// Bits of a status.
    enum Status : unsigned int {
        disabled = 1,
        enabled = 2,
        deleted = 4,
        online = 16,
        offline = 32,
        registered = 64,
        unregistered = 128,
    };

    /// Status bits by name.
    using StatusMap = rksl::StringMap<rktl::Integer>;

    struct MachineInfo : rktl::Attributes {
        rktl::String name;
        rktl::Integer status = 0;
        StatusMap cameras;
    };

    /// At most two words, with "|" between: the first set of disabled, enabled, deleted, and the first set of the others.
    static rktl::String statusToString(unsigned int status);
    /// The bits of all known words, in any case; other words are skipped.
    static unsigned int statusFromString(rktl::String const& text);

    /// A machine without cameras. False, and as before, when there is one of that name or the name is null.
    bool addMachine(char const* name, unsigned int status);

    // Each is false for a machine that is not there.

    /// Also gives a camera that is there its new status.
    bool addCamera(char const* machine, char const* camera, unsigned int status);
    /// True when there was no such camera, too.
    bool removeCamera(char const* machine, char const* camera);
    /// Empty values remove; see rktl::Attributes::updateAttributes.
    bool setMachineAttrs(char const* machine, rksl::StringMap<rktl::String> const& attributes);
    bool getMachineAttrs(char const* machine, rktl::Attributes& attributes) const;

    // mask: other than 0 takes only those whose status equals it.

    /// machines: becomes the machines' status by name.
    void getMachines(StatusMap& machines, unsigned int mask) const;
    CameraGroup getCameras(unsigned int mask) const;
    /// Empty for a machine that is not there.
    StatusMap getCameras(char const* machine, unsigned int mask) const;

    /// Whether the camera that the address names is both enabled and online.
    bool cameraRunning(MeridaneAddress const& address) const;

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// False, and as before, when xml holds no element.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    MachineInfo* findMachine(char const* name);
    MachineInfo const* findMachine(char const* name) const;

    std::map<rktl::String, MachineInfo> mMachines;
};
