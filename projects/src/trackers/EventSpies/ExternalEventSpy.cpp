#include "trackers/EventSpies/ExternalEventSpy.h"

#include "streams/rkxml_DomIterator.h"

namespace {

constexpr char const* externalType = "external";

} // namespace

ExternalEventSpy::ExternalEventSpy()
    : ExternalEventSpy("", "")
{
}

ExternalEventSpy::ExternalEventSpy(char const* name, char const* description)
    : EventSpy(name, description)
{
    setAlarmType(externalType);
}

unsigned int ExternalEventSpy::getTypeId() const
{
    return 1022;
}

rktl::String ExternalEventSpy::getTypeName() const
{
    return "ExternalEventSpy";
}

ExternalEventSpy* ExternalEventSpy::clone() const
{
    return new ExternalEventSpy(*this);
}

void ExternalEventSpy::reset() { }

rktl::String ExternalEventSpy::getFriendlyName() const
{
    return "External Input";
}

rktl::String ExternalEventSpy::toXML(char const* tag) const
{
    return wrapXML(tag, "");
}

bool ExternalEventSpy::fromXML(char const* xml)
{
    bool const isRead = readChildren(xml,
        [this](rkxml::DomIterator& child) { return child.getName() != "EventSpy" || EventSpy::fromXML(child.toXML().c_str()); });
    setAlarmType(externalType);
    return isRead;
}

bool ExternalEventSpy::serialize(rksl::MemIOStream&) const
{
    return true;
}

bool ExternalEventSpy::unserialize(rksl::MemIOStream&)
{
    return true;
}

void ExternalEventSpy::onCreateXML(rktl::String& xml) const
{
    xml.clear();
}

void ExternalEventSpy::onParseXML(rkxml::DomIterator&) { }
