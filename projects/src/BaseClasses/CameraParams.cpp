#include "BaseClasses/CameraParams.h"

#include "misc/rk_portability.h"
#include "misc/rktl_url.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>

namespace {

bool fits(ProcessParams const& process, rktl::String const& name, rktl::String const& mode)
{
    return process.getName() == name && (mode.empty() || process.getMode() == mode);
}

bool updates(ProcessParams const& update, ProcessParams const& process)
{
    return fits(process, update.getName(), update.getMode()) || fits(update, process.getName(), process.getMode());
}

rktl::String queryOf(rktl::String const& url, char const* key)
{
    rktl::String value;
    rktl::url(url).mQuery.peek(key, value);
    return value;
}

} // namespace

CameraParams::CameraParams(rktl::String const& name, rktl::UUID const& guid, rktl::TimeStamp const& revision)
    : mName(name)
    , mGuid(guid)
    , mRevision(revision)
{
}

// ---- Stages ----

bool CameraParams::hasProcessMode(rktl::String const& mode) const
{
    return std::any_of(
        mProcesses.begin(), mProcesses.end(), [&](ProcessParams const& process) { return process.getMode() == mode; });
}

bool CameraParams::isProcessEnabled(rktl::String const& name, rktl::String const& mode) const
{
    auto const found = std::find_if(
        mProcesses.begin(), mProcesses.end(), [&](ProcessParams const& process) { return fits(process, name, mode); });
    return found != mProcesses.end() && found->isEnabled();
}

void CameraParams::addProcess(ProcessParams const& params, rktl::String const& before)
{
    auto place = mProcesses.end();
    if (!before.empty())
        place = std::find_if(
            mProcesses.begin(), mProcesses.end(), [&](ProcessParams const& process) { return process.getName() == before; });
    mProcesses.insert(place, params);
}

void CameraParams::removeProcess(rktl::String const& name, rktl::String const& mode)
{
    mProcesses.remove_if([&](ProcessParams const& process) { return fits(process, name, mode); });
}

void CameraParams::updateProcess(ProcessParams const& params)
{
    rksl::List<ProcessParams> one;
    one.push_back(params);
    mergeProcesses(one);
}

void CameraParams::mergeProcesses(rksl::List<ProcessParams> const& processes)
{
    rksl::List<ProcessParams> updated = processes;
    rksl::List<ProcessParams> merged;
    for (ProcessParams const& process : mProcesses) {
        if (std::none_of(
                processes.begin(), processes.end(), [&](ProcessParams const& update) { return updates(update, process); }))
            merged.push_back(process);
        // What has found its place is not there for the next stage that it updates, which just goes.
        for (auto update = updated.begin(); update != updated.end();) {
            auto const next = std::next(update);
            if (updates(*update, process))
                merged.splice(merged.end(), updated, update);
            update = next;
        }
    }
    merged.splice(merged.end(), updated);
    mProcesses = std::move(merged);
}

void CameraParams::restrictProcessMode(rktl::String const& mode)
{
    mProcesses.remove_if([&](ProcessParams const& process) { return !process.getMode().empty() && process.getMode() != mode; });
}

// ---- Log; pan, tilt and zoom ----

rktl::String CameraParams::getLogPath(rktl::String const& name) const
{
    if (mLogDirectory.empty())
        return {};
    return mLogDirectory + "/" + (name.empty() ? rktl::String(mName + "-Camera.log") : name);
}

bool CameraParams::isPTZEnabled() const
{
    return queryOf(mVideoURL, "rk-ptz-enabled").toBool();
}

rktl::ElapsedTime CameraParams::getPTZTimeout() const
{
    rktl::String const milliseconds = queryOf(mVideoURL, "rk-ptz-auto-return");
    return rktl::ElapsedTime(milliseconds.empty() ? -1 : rk_atoi64(milliseconds.c_str()));
}

rktl::String CameraParams::getHomePosition() const
{
    return queryOf(mVideoURL, "rk-home-preset");
}

// ---- Stored ----

unsigned int CameraParams::getTypeId() const
{
    return 31;
}

rktl::String CameraParams::getTypeName() const
{
    return "CameraParams";
}

rktl::String CameraParams::toXML(char const* tag) const
{
    if (!tag)
        return {};
    rktl::String const element(tag);
    rktl::String xml = "<" + element + " name=\"" + rktl::String::encodeHtml(mName) + "\"";
    if (mPort > 0)
        xml += " port=\"" + rktl::String::fromInteger(mPort) + "\"";
    if (mGuid.isValid())
        xml += " guid=\"" + mGuid.toString() + "\"";
    xml += ">" + mRevision.toXML("revision") + mGPUDevice.toXML("gpu-device") + mProcesses.toXML("VideoProcesses");
    if (mScale != 1.0)
        xml += mScale.toXML("scale");
    xml += mVideoURL.toXML("video-url") + mAttributes->toXML("attributes") + mLogDirectory.toXML("log-dir");
    return xml + "</" + element + ">";
}

bool CameraParams::fromXML(char const* xml)
{
    rkxml::DomIterator const root = rkxml::DomIterator::parse(xml);
    if (root.atEnd() || !root.hasChildren())
        return false;
    *this = CameraParams();
    mName = root.getAttribute("name");
    mPort = root.getAttribute("port").toInteger();
    mGuid.fromString(root.getAttribute("guid"));
    rksl::NamedMembers const elements = {{"revision", &mRevision}, {"gpu-device", &mGPUDevice}, {"VideoProcesses", &mProcesses},
        {"scale", &mScale}, {"video-url", &mVideoURL}, {"attributes", &mAttributes.change()}, {"log-dir", &mLogDirectory}};
    for (auto child = root.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        auto const known = elements.find(child.getName());
        if (known != elements.end())
            known->second->fromXML(child.toXML().c_str());
    }
    return true;
}

void CameraParams::fillSerializable(rksl::MemberList& list, rksl::NamedMembers&)
{
    list = {
        &mName, &mPort, &mGuid, &mRevision, &mGPUDevice, &mProcesses, &mScale, &mVideoURL, &mAttributes.change(), &mLogDirectory};
}

char const* CameraParams::getClassName() const
{
    return "CameraParams";
}
