#pragma once

#include "BaseClasses/ObjectMap.h"
#include "plugin/rkpl_Plugin.h"

#include <cstdint>

/// The stage that tracks objects, as other stages and commands see it. Any thread; waits at most 15 s for the stage.
class Tracker : public rkpl::Plugin {
public:
    static constexpr char const* identifier = "{2568ADEE-B4F4-4db1-9282-9823C1CC390C}";

    /// While locked no new objects start.
    virtual bool lock(bool locked) = 0;
    /// Marks a living object as removed. False when there is none of that id.
    virtual bool removeObject(uint32_t id) = 0;
    /// Adds copies of the living objects and of those in limbo.
    virtual bool getObjects(ObjectMap& objects) = 0;
    virtual uint32_t getNextID() = 0;
    virtual void setNextID(uint32_t id) = 0;
};
