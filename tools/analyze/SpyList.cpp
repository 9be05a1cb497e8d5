#include "SpyList.h"

#include "misc/rktl_ElapsedTime.h"
#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/EventSpyFactory.h"
#include "trackers/EventSpies/FrameEventSpy.h"

#include <memory>
#include <ostream>

namespace tools {

namespace {

/// Elements that hold others over several lines, the others on one.
void write(std::ostream& out, rkxml::DomIterator const& element, std::string const& indent)
{
    if (!element.hasChildren()) {
        out << indent << element.toXML() << "\n";
        return;
    }
    out << indent << "<" << element.getName() << ">\n";
    for (auto child = element.childrenBegin(); !child.atEnd(); child.nextSibling())
        write(out, child, indent + "  ");
    out << indent << "</" << element.getName() << ">\n";
}

/// With a configuration that works, where there is one.
std::unique_ptr<EventSpy> makeSpy(unsigned short typeId)
{
    std::unique_ptr<EventSpy> spy(EventSpyFactory::defaultEventSpy(typeId));
    if (!spy)
        spy.reset(EventSpyFactory::newEventSpy(typeId));
    return spy;
}

} // namespace

void listSpies(std::ostream& out)
{
    out << rktl::ElapsedTime(200).toXML("processing-interval") << "\n";
    for (auto const& [name, xml] : EventSpyFactory::getAllEventSpies()) {
        auto const spy = makeSpy(EventSpyFactory::getSpyType(name));
        if (!dynamic_cast<FrameEventSpy const*>(spy.get()))
            continue;
        out << "\n<!-- " << spy->getFriendlyName() << " -->\n";
        write(out, rkxml::DomIterator::parse(spy->toXML()), "");
    }
}

} // namespace tools
