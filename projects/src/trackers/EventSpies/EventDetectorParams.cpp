#include "trackers/EventSpies/EventDetectorParams.h"

#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/EventSpy.h"

#include <algorithm>

namespace {

rktl::ElapsedTime const defaultInterval = rktl::ElapsedTime::fromMilliseconds(200);

} // namespace

EventDetectorParams::EventDetectorParams(rktl::ElapsedTime const& interval)
    : ProcessParams("EventDetector")
    , mProcessingInterval(interval)
{
}

rksl::List<EventSpyFactory>::iterator EventDetectorParams::find(rktl::String const& name)
{
    return std::find_if(mSpyFactories.begin(), mSpyFactories.end(),
        [&](EventSpyFactory const& factory) { return factory.getSpy() && factory.getSpy()->getName() == name; });
}

bool EventDetectorParams::renameSpy(rktl::String const& oldName, rktl::String const& newName)
{
    auto const found = find(oldName);
    if (found == mSpyFactories.end())
        return false;
    found->getSpy()->setName(newName);
    return true;
}

bool EventDetectorParams::removeSpy(rktl::String const& name)
{
    auto const found = find(name);
    if (found == mSpyFactories.end())
        return false;
    mSpyFactories.erase(found);
    return true;
}

rksl::MemIOStream EventDetectorParams::binSerialize() const
{
    rksl::MemIOStream stream;
    stream << mSpyFactories << mProcessingInterval;
    return stream;
}

bool EventDetectorParams::binUnserialize(rksl::MemIOStream const& stream)
{
    mSpyFactories.clear();
    try {
        rksl::MemIOStream copy(stream);
        copy >> mSpyFactories >> mProcessingInterval;
    } catch (std::exception const&) {
        return false;
    }
    return true;
}

rktl::String EventDetectorParams::xmlSerialize() const
{
    rktl::String xml = mProcessingInterval.toXML("processing-interval");
    for (EventSpyFactory const& factory : mSpyFactories)
        xml += factory.toXML() + "\n";
    return xml;
}

bool EventDetectorParams::xmlUnserialize(rktl::String const& xml)
{
    mSpyFactories.clear();
    rkxml::DomIterator cursor = rkxml::DomIterator::parse("<TempTag>" + xml + "</TempTag>");
    if (cursor.atEnd())
        return false;
    mProcessingInterval = defaultInterval;
    if (!cursor.hasChildren())
        return true;
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling()) {
        rktl::String const element = cursor.toXML();
        EventSpyFactory factory;
        if (cursor.getName() == "processing-interval")
            mProcessingInterval.fromXML(element.c_str());
        else if (factory.fromXML(element.c_str()))
            mSpyFactories.push_back(factory);
    }
    return true;
}
