#include "sync/rkst_Event.h"

#include "sync/rkst_Deadline.h"
#include "sync/rkst_ListWaiters.h"
#include "sync/rkst_Sleep.h"

namespace rkst {

namespace {

bool take(rk_event_object& state)
{
    return state.manualReset ? state.signalled.load() != 0 : state.signalled.exchange(0) != 0;
}

} // namespace

Event::Event(bool manualReset, bool initiallySignalled)
    : rktl::SmartPtr<rk_event_object>(new rk_event_object{initiallySignalled, manualReset})
{
}

bool Event::wait(unsigned int milliseconds) const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    if (take(*state))
        return true;
    if (milliseconds == 0)
        return false;
    sleepWhile(state->signalled, 0, Deadline(milliseconds));
    return take(*state);
}

bool Event::signal() const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    state->signalled.store(1);
    wakeSleepers(state->signalled, state->manualReset);
    wakeListWaiters(state->watchers.load());
    return true;
}

bool Event::watch(uint32_t place) const
{
    rk_event_object* const state = get();
    if (state)
        state->watchers.fetch_or(place);
    return true; // without state it is never obtained, so there is nothing to tell
}

bool Event::reset() const
{
    rk_event_object* const state = get();
    if (!state)
        return false;
    state->signalled.store(0);
    return true;
}

} // namespace rkst
