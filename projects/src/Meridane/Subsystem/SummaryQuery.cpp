#include "Meridane/Subsystem/SummaryQuery.h"

namespace {

rktl::String textOf(rktl::TimeStamp const& time)
{
    return time.isSet() ? time.toGMT().toISOString() : rktl::String();
}

} // namespace

void SummaryQuery::setTimes(rktl::TimeStamp const& first, rktl::TimeStamp const& last)
{
    set("first", textOf(first));
    set("last", textOf(last));
}

rktl::TimeStamp SummaryQuery::getFirst() const
{
    return rktl::TimeStamp::fromISOString(get("first"));
}

rktl::TimeStamp SummaryQuery::getLast() const
{
    return rktl::TimeStamp::fromISOString(get("last"));
}

void SummaryQuery::setCamera(rktl::String const& camera)
{
    set("camera", camera);
}

rktl::String SummaryQuery::getCamera() const
{
    return get("camera");
}

void SummaryQuery::setLimit(unsigned int limit)
{
    set("limit", limit > 0 ? rktl::String::fromFormat("%u", limit) : rktl::String());
}

unsigned int SummaryQuery::getLimit() const
{
    return static_cast<unsigned int>(get("limit").toInteger());
}

void SummaryQuery::set(char const* name, rktl::String const& value)
{
    if (value.empty())
        erase(name);
    else
        (*this)[name] = value;
}

rktl::String SummaryQuery::get(char const* name) const
{
    rktl::String value;
    peek(name, value);
    return value;
}
