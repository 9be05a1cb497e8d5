#pragma once

#include "misc/rktl_String.h"
#include "misc/rktl_TimeStamp.h"
#include "streams/rksl_StringMap.h"

/// Which summaries of tracks are asked for: conditions by name, all of which a track has to meet. What is not set asks for
/// nothing. On the wire it is the map of texts that it is made of, so that new conditions need no new form. A plain value.
class SummaryQuery : public rksl::StringMap<rktl::String> {
public:
    // Tracks that were seen within these moments, both included; a moment that is not set removes the condition.
    void setTimes(rktl::TimeStamp const& first, rktl::TimeStamp const& last);
    rktl::TimeStamp getFirst() const;
    rktl::TimeStamp getLast() const;

    /// The name of a camera; "" for any.
    void setCamera(rktl::String const& camera);
    rktl::String getCamera() const;

    /// How many summaries are wanted at most, newest first; 0 for all.
    void setLimit(unsigned int limit);
    unsigned int getLimit() const;

private:
    void set(char const* name, rktl::String const& value);
    rktl::String get(char const* name) const;
};
