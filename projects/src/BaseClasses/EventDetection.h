#pragma once

#include "BaseClasses/Event.h"
#include "plugin/rkpl_Plugin.h"
#include "streams/rksl_List.h"
#include "streams/rksl_StringMap.h"

#include <list>

class EventSpy;
class EventSpyFactory;

/// The stage that runs the spies, as other stages and commands see it. Any thread; waits at most 15 s for the stage.
class EventDetection : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{01E77EF4-D2E4-411e-92FB-5B5BD31171C4}";

    /// Adds the new and changed events since the last call.
    virtual bool getEvents(rksl::List<Event>& events) = 0;
    /// Runs a clone of the spy, in the place of any of its name.
    virtual bool addSpy(EventSpy const* spy) = 0;
    /// The same, if there is one of its name.
    virtual bool setSpy(EventSpy const* spy) = 0;
    virtual bool getSpies(std::list<EventSpyFactory>& spies) const = 0;
    /// XML of each type of spy by type name.
    virtual bool getSupportedSpies(rksl::StringMap<rktl::String>& spies) const = 0;
    virtual bool removeSpy(rktl::String const& name) = 0;
    virtual bool renameSpy(rktl::String const& oldName, rktl::String const& newName) = 0;
};
