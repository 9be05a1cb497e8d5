#include "trackers/EventSpies/ProfileSpy.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

rktl::ElapsedTime const trackWindow = rktl::ElapsedTime::fromSeconds(15);

double decimal(rktl::String const& text)
{
    return std::strtod(text.c_str(), nullptr);
}

} // namespace

ProfileSpy::ProfileSpy()
{
    setNonContiguous(true);
}

ProfileSpy::ProfileSpy(char const* name, float minConfidence, rktl::ElapsedTime const& minValidTime)
    : ObjectSpy(name, "", minConfidence, minValidTime, rktl::ElapsedTime(1))
{
    setNonContiguous(true);
}

unsigned int ProfileSpy::getTypeId() const
{
    return 1026;
}

rktl::String ProfileSpy::getTypeName() const
{
    return "ProfileSpy";
}

ProfileSpy* ProfileSpy::clone() const
{
    return new ProfileSpy(*this);
}

rktl::String ProfileSpy::getFriendlyName() const
{
    return "Profile Spy";
}

unsigned int ProfileSpy::getFilterMask() const
{
    return 0;
}

rktl::String ProfileSpy::getRuleText() const
{
    return rktl::String::fromFormat(
        "alarms when an object is gone that was recognised for %s or longer with a confidence of %.3g",
        getMinValidTime().toHumanString(false).c_str(), getMinConfidence());
}

float ProfileSpy::computeConfidence(Object const& object) const
{
    rktl::String recognition;
    return computeConfidence(object, recognition);
}

float ProfileSpy::computeConfidence(Object const& object, rktl::String& recognition) const
{
    static rktl::String const kindsKey = "Recognition Types";
    if (object.getAttribute(kindsKey).empty())
        return 0.0f;
    rksl::Set<rktl::String> kinds;
    object.getNamespaceNames(kindsKey, kinds);
    double best = 0.0;
    for (rktl::String const& kind : kinds) {
        rksl::StringMap<rktl::String> values;
        object.getNamespaceValues(kind, values);
        auto const confidence = values.find("Recognition Conf");
        double const value = confidence == values.end() ? 0.0 : decimal(confidence->second);
        if (!(value > best))
            continue;
        best = value;
        auto const result = values.find("Recognition");
        if (result != values.end())
            recognition = result->second;
    }
    return static_cast<float>(std::min(best, double(std::numeric_limits<float>::max())));
}

void ProfileSpy::onNewEvent(Event& event, Frame const& frame)
{
    event.setAttribute("replace-description", "profile-guids");
    rksl::Set<rktl::Integer> ids;
    event.getObjectIDs(originText(), ids);
    Object object("Moving", trackWindow);
    if (ids.empty() || !frame.getObject(static_cast<uint32_t>(ids.begin()->value), object))
        return;
    rktl::String recognition;
    computeConfidence(object, recognition);
    event.setAttribute("profile-guids", recognition);
}
