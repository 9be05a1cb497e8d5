#include "BaseClasses/CameraMap.h"

#include "streams/rksl_ByteReader.h"
#include "streams/rkxml_DomIterator.h"

#include <span>
#include <utility>

namespace {

struct StatusWord {
    unsigned int bit;
    char const* word;
};

// Any word of the first group sorts before any of the second.
constexpr StatusWord setUp[] = {
    {CameraMap::disabled, "disabled"}, {CameraMap::enabled, "enabled"}, {CameraMap::deleted, "deleted"}};
constexpr StatusWord reached[] = {{CameraMap::online, "online"}, {CameraMap::offline, "offline"},
    {CameraMap::registered, "registered"}, {CameraMap::unregistered, "unregistered"}};

rktl::String firstWord(std::span<StatusWord const> group, unsigned int status)
{
    for (StatusWord const& known : group)
        if (status & known.bit)
            return known.word;
    return {};
}

unsigned int bitOf(std::span<StatusWord const> group, rktl::String const& word)
{
    for (StatusWord const& known : group)
        if (word == known.word)
            return known.bit;
    return 0;
}

bool isTaken(rktl::Integer const& status, unsigned int mask)
{
    return mask == 0 || static_cast<unsigned int>(status.value) == mask;
}

rktl::Integer statusOf(rkxml::DomIterator const& element)
{
    return static_cast<int32_t>(CameraMap::statusFromString(element.getAttribute("status")));
}

rktl::String statusText(rktl::Integer const& status)
{
    return CameraMap::statusToString(static_cast<unsigned int>(status.value));
}

void readMachine(rkxml::DomIterator const& element, CameraMap::MachineInfo& machine)
{
    for (auto child = element.childrenBegin(); !child.atEnd(); child.nextSibling())
        if (child.getName() == "camera")
            machine.cameras[child.getValue()] = statusOf(child);
        else if (child.getName() == "machine-attributes")
            machine.setAttribute(child.getAttribute("name"), child.getAttribute("value"));
}

rktl::String machineXml(CameraMap::MachineInfo const& machine)
{
    using rktl::String;
    String xml = "<machine status=\"" + statusText(machine.status) + "\">" + String::encodeHtml(machine.name);
    for (auto const& [key, value] : machine.getAttributes())
        xml += "<machine-attributes name=\"" + String::encodeHtml(key) + "\" value=\"" + String::encodeHtml(value) + "\"/>";
    for (auto const& [name, status] : machine.cameras)
        xml += "<camera status =\"" + statusText(status) + "\">" + String::encodeHtml(name) + "</camera>";
    return xml + "</machine>";
}

} // namespace

rktl::String CameraMap::statusToString(unsigned int status)
{
    rktl::String const first = firstWord(setUp, status);
    rktl::String const second = firstWord(reached, status);
    return first + (first.empty() || second.empty() ? "" : "|") + second;
}

unsigned int CameraMap::statusFromString(rktl::String const& text)
{
    unsigned int status = 0;
    for (rktl::String const& word : text.toLower().tokenize("|"))
        status |= bitOf(setUp, word) | bitOf(reached, word);
    return status;
}

CameraMap::MachineInfo* CameraMap::findMachine(char const* name)
{
    return const_cast<MachineInfo*>(std::as_const(*this).findMachine(name));
}

CameraMap::MachineInfo const* CameraMap::findMachine(char const* name) const
{
    auto const found = name ? mMachines.find(name) : mMachines.end();
    return found != mMachines.end() ? &found->second : nullptr;
}

bool CameraMap::addMachine(char const* name, unsigned int status)
{
    if (!name)
        return false;
    auto const [machine, isNew] = mMachines.try_emplace(name);
    if (isNew) {
        machine->second.name = name;
        machine->second.status = static_cast<int32_t>(status);
    }
    return isNew;
}

bool CameraMap::addCamera(char const* machine, char const* camera, unsigned int status)
{
    MachineInfo* const info = findMachine(machine);
    if (!info || !camera)
        return false;
    info->cameras[camera] = static_cast<int32_t>(status);
    return true;
}

bool CameraMap::removeCamera(char const* machine, char const* camera)
{
    MachineInfo* const info = findMachine(machine);
    if (!info)
        return false;
    if (camera)
        info->cameras.erase(camera);
    return true;
}

bool CameraMap::setMachineAttrs(char const* machine, rksl::StringMap<rktl::String> const& attributes)
{
    MachineInfo* const info = findMachine(machine);
    if (info)
        info->updateAttributes(attributes);
    return info != nullptr;
}

bool CameraMap::getMachineAttrs(char const* machine, rktl::Attributes& attributes) const
{
    MachineInfo const* const info = findMachine(machine);
    if (info)
        attributes = *info;
    return info != nullptr;
}

void CameraMap::getMachines(StatusMap& machines, unsigned int mask) const
{
    machines.clear();
    for (auto const& [name, machine] : mMachines)
        if (isTaken(machine.status, mask))
            machines[name] = machine.status;
}

CameraGroup CameraMap::getCameras(unsigned int mask) const
{
    CameraGroup group;
    for (auto const& [machine, info] : mMachines)
        for (auto const& [camera, status] : info.cameras)
            if (isTaken(status, mask))
                group.add(MeridaneAddress(camera, "", machine));
    return group;
}

CameraMap::StatusMap CameraMap::getCameras(char const* machine, unsigned int mask) const
{
    StatusMap cameras;
    if (MachineInfo const* const info = findMachine(machine))
        for (auto const& [camera, status] : info->cameras)
            if (isTaken(status, mask))
                cameras[camera] = status;
    return cameras;
}

bool CameraMap::cameraRunning(MeridaneAddress const& address) const
{
    MachineInfo const* const info = findMachine(address.getMachine().c_str());
    rktl::Integer status = 0;
    constexpr int32_t running = enabled | online;
    return info && info->cameras.peek(address.getCamera(), status) && (status.value & running) == running;
}

// ---- Stored ----

unsigned int CameraMap::getTypeId() const
{
    return 10;
}

rktl::String CameraMap::getTypeName() const
{
    return "CameraMap";
}

rktl::String CameraMap::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const name(tag);
    rktl::String xml = "<" + name + ">";
    for (auto const& [key, machine] : mMachines)
        xml += machineXml(machine);
    return xml + "</" + name + ">";
}

bool CameraMap::fromXML(char const* xml)
{
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd())
        return false;
    mMachines.clear();
    for (auto child = root.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        if (child.getName() != "machine")
            continue;
        rktl::String const name = child.getValue();
        addMachine(name.c_str(), static_cast<unsigned int>(statusOf(child).value));
        readMachine(child, mMachines[name]);
    }
    return true;
}

unsigned int CameraMap::getBinLength() const
{
    return toXML().getBinLength();
}

unsigned int CameraMap::toBin(unsigned char* out) const
{
    return toXML().toBin(out);
}

unsigned int CameraMap::fromBin(unsigned char const* in, unsigned int length)
{
    rktl::String xml;
    unsigned int const used = xml.fromBin(in, length);
    if (!fromXML(xml.c_str()))
        rksl::ByteReader::fail();
    return used;
}
