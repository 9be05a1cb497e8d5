#include "trackers/EventSpies/Sighting.h"

#include "BaseClasses/Object.h"
#include "math/rkml_Coordinate.h"

Sighting::Sighting(uint32_t objectId, Object const& seen)
    : object(&seen)
    , id(objectId)
    , state(seen.getState())
    , isStatic(seen.getType() == "Static")
    , hasPath(!seen.getTrack().empty())
{
    if (!hasPath)
        return;
    box = seen.getTrack().newest().mBox;
    centre = box.centre();
    firstCentre = seen.getFirstBox().centre();
    time = seen.getTrack().newestTime();
    age = seen.age();
    travel = seen.travel();
    travelPixels = rkml::coordinateCast<int32_t>(travel);
}
