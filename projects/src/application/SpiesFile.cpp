#include "application/SpiesFile.h"

#include "misc/rktl_Exception.h"
#include "streams/rkxml_DomIterator.h"
#include "trackers/EventSpies/EventDetectorParams.h"
#include "trackers/EventSpies/FrameEventSpy.h"
#include "trackers/EventSpies/SpyXmlCheck.h"

#include <vector>

namespace {

constexpr size_t sizeMax = 1024 * 1024; // bytes of a file
constexpr size_t spiesMax = 1000;
constexpr char const* byteOrderMark = "\xEF\xBB\xBF"; // some editors begin a file with it

[[noreturn]] void refuse(rktl::String const& why)
{
    throw rktl::Exception(why.c_str());
}

rktl::String joined(std::vector<rktl::String> const& faults)
{
    return rktl::String(rktl::String::join(faults, "; "));
}

/// LineCrossingSpy "gate"
rktl::String title(rkxml::DomIterator const& element)
{
    rktl::String const name = element.findChild("EventSpy").findChild("name").getValue();
    return name.empty() ? element.getName() : element.getName() + " \"" + name + "\"";
}

void checkSpy(rkxml::DomIterator const& element)
{
    std::vector<rktl::String> faults;
    findXmlFaults(element, faults);
    EventSpyFactory factory;
    if (faults.empty() && !factory.fromXML(element.toXML().c_str()))
        faults.push_back("is incomplete");
    if (faults.empty() && !dynamic_cast<FrameEventSpy const*>(factory.getSpy()))
        faults.push_back("is no rule over frames, so that it would never be run");
    if (faults.empty())
        factory.getSpy()->findFaults(faults);
    if (!faults.empty())
        refuse(title(element) + ": " + joined(faults));
}

void checkInterval(rkxml::DomIterator const& element)
{
    std::vector<rktl::String> faults;
    findIntervalFaults(element, faults);
    if (!faults.empty())
        refuse(joined(faults));
}

/// Spies of one name would replace each other; one without gets "Spy 0", "Spy 1" and so on.
void checkNames(rksl::List<EventSpyFactory> const& spies)
{
    rksl::Set<rktl::String> names;
    for (size_t i = 0; i <= spies.size(); ++i)
        names.insert(rktl::String::fromFormat("Spy %u", static_cast<unsigned int>(i)));
    for (EventSpyFactory const& factory : spies) {
        rktl::String const& name = factory.getSpy()->getName();
        if (!name.empty() && !names.insert(name).second)
            refuse(factory.getSpy()->getTypeName() + " \"" + name + "\": name: is taken by another spy");
    }
}

} // namespace

SpiesFile SpiesFile::parse(rktl::String const& file)
{
    rktl::String const text(file.substr(file.hasPrefix(byteOrderMark) ? 3 : 0));
    if (text.size() > sizeMax)
        refuse(rktl::String::fromFormat("is larger than %u bytes", static_cast<unsigned int>(sizeMax)));
    rktl::String const document = "<spies>" + text + "</spies>";
    rktl::String const why = rkxml::DomIterator::whyRefused(document);
    if (!why.empty())
        refuse(why);
    rkxml::DomIterator cursor = rkxml::DomIterator::parse(document);
    if (cursor.numChildren() > spiesMax)
        refuse(rktl::String::fromFormat("has more than %u elements", static_cast<unsigned int>(spiesMax)));
    if (cursor.hasValue())
        refuse("there is text between the spies: \"" + cursor.getValue() + "\"");
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling()) {
        if (cursor.getName() == "processing-interval")
            checkInterval(cursor);
        else
            checkSpy(cursor);
    }
    EventDetectorParams params{rktl::ElapsedTime()};
    params.xmlUnserialize(text);
    if (params.getSpyFactories().empty())
        refuse("holds no spy");
    checkNames(params.getSpyFactories());
    return {params.getSpyFactories(), params.getProcessingInterval()};
}

SpiesFile SpiesFile::read(rktl::String const& path)
{
    rktl::String text;
    if (!text.fromFile(path.c_str()))
        refuse(path + ": cannot be read");
    try {
        return parse(text);
    } catch (rktl::Exception const& exception) {
        refuse(path + ": " + exception.what());
    }
}

void SpiesFile::addTo(SimpleTracker::Params& params, bool alone) const
{
    if (alone)
        params.spies.clear();
    params.spies.insert(params.spies.end(), spies.begin(), spies.end());
    params.processingInterval = processingInterval;
    params.keepSpyClasses = true;
}

bool takeSpiesFile(SettingsMap const& settings, rktl::String const& home, SimpleTracker::Params& params, rktl::String& complaint)
{
    auto const file = settings.find("spies_file");
    if (file == settings.end() || file->second.empty())
        return false;
    auto const only = settings.find("spies_only");
    try {
        SpiesFile::read(home + "/" + file->second).addTo(params, only != settings.end() && only->second.toInteger() != 0);
        return true;
    } catch (rktl::Exception const& exception) {
        complaint = exception.what();
        return false;
    }
}
