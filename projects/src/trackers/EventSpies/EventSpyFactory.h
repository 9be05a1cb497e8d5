#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_Serializable.h"
#include "streams/rksl_StringMap.h"

#include <cstdint>
#include <memory>

class EventSpy;

/// Holds a spy of any type, so that spies can travel: it knows all types by id and by name, and makes them. Owns its spy;
/// a copy holds a clone.
///
/// Binary form: a stream of the spy's type id and the spy. XML form: that of the spy.
class EventSpyFactory : public rksl::Serializable {
public:
    /// Holds no spy.
    EventSpyFactory();
    /// Holds a clone; spy must not be null.
    explicit EventSpyFactory(EventSpy const* spy);
    /// The default spy of the type, or none.
    explicit EventSpyFactory(unsigned short typeId);
    /// The same by name; "CapacityActivitySpy" is an Activity that alarms at more than one box.
    explicit EventSpyFactory(char const* typeName);
    EventSpyFactory(EventSpyFactory const& other);
    EventSpyFactory& operator=(EventSpyFactory const& other);
    ~EventSpyFactory() override;

    /// Null when there is none; still owned by the factory.
    EventSpy* getSpy() const { return mSpy.get(); }

    /// The type's id, or 0. Letter case is ignored.
    static unsigned short getSpyType(rktl::String const& typeName);
    /// As the class's default constructor makes it; null for an unknown id. The caller owns it.
    static EventSpy* newEventSpy(unsigned short typeId);
    /// With a configuration that works; null for types without one, and for an unknown id. The caller owns it.
    static EventSpy* defaultEventSpy(unsigned short typeId);
    /// The XML of each type over frames as its default constructor makes it, by type name.
    static rksl::StringMap<rktl::String> getAllEventSpies();

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    /// The element is called as the spy's type; without a spy "".
    rktl::String toXML() const override;
    rktl::String toXML(char const* tag) const override;
    /// False when the text is no element (the spy stays), is of no known type, or is refused by the spy (there is none then).
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    /// Throws rktl::Exception without a spy.
    unsigned int toBin(unsigned char* out) const override;
    /// Throws rktl::Exception for an unknown type.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    std::unique_ptr<EventSpy> mSpy;
};
