#pragma once

#include "trackers/EventSpies/EventSpy.h"

/// Has no rule of its own: a named holder for events that come from elsewhere. It sees no frames, so a detector refuses it; its
/// owner hands it events with addEvent. They are of the type "external", always.
class ExternalEventSpy : public EventSpy {
public:
    ExternalEventSpy();
    ExternalEventSpy(char const* name, char const* description);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using EventSpy::toXML;
    rktl::String toXML(char const* tag) const override;
    bool fromXML(char const* xml) override;
    ExternalEventSpy* clone() const override;
    /// Does nothing: the events stay.
    void reset() override;
    rktl::String getFriendlyName() const override;

protected:
    bool serialize(rksl::MemIOStream& stream) const override;
    bool unserialize(rksl::MemIOStream& stream) override;
    void onCreateXML(rktl::String& xml) const override;
    void onParseXML(rkxml::DomIterator& element) override;
};
