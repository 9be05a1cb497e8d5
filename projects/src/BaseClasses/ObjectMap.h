#pragma once

#include "BaseClasses/Object.h"
#include "streams/rksl_IntMap.h"

/// The objects of a moment by their ids, in ascending order. Answers as rksl::IntMap<Object> on the wire.
class ObjectMap : public rksl::IntMap<Object> {
public:
    using rksl::IntMap<Object>::IntMap;

    /// Null when there is none; good until that entry goes.
    Object* findObject(uint32_t id);
    Object const* findObject(uint32_t id) const;

    /// Exchanges the objects under two ids, each taking the id of its new place. False, and as before, when one is missing.
    bool swapObjects(uint32_t a, uint32_t b);

    /// Follows another map, keeping paths: objects that it lacks go, those it has are updated, new ones keep a path of window.
    void update(ObjectMap const& other, rktl::ElapsedTime const& window);

    /// Of two objects with the same newest time that show one thing the larger id goes. They show one thing when their boxes
    /// are equal or, for an overlap above 0, when more than that share of the second one's box lies in the first.
    void removeDuplicates(double overlap);
};
