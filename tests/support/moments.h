#pragma once

#include "misc/rktl_TimeStamp.h"

/// So many milliseconds after the epoch.
inline rktl::TimeStamp at(int64_t milliseconds)
{
    return rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(milliseconds));
}
