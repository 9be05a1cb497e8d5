#pragma once

#include "misc/rktl_String.h"

#include <vector>

namespace rkxml {
class DomIterator;
}

/// Spies read XML generously: what they do not know they pass over, and a text that is no number reads as 0. Fit for machines
/// that write it; a person who has mistyped an element would get another rule than the one written down. So whoever takes
/// spies from people asks here first.
///
/// Adds a line for each element of a spy that the spy would pass over or misread, such as
/// "direction: expected 0, 1 or 2, not \"left\"". spy: the element of a spy, called as its type.
void findXmlFaults(rkxml::DomIterator const& spy, std::vector<rktl::String>& faults);

/// The same for an element with the least spacing of the frames that spies see.
void findIntervalFaults(rkxml::DomIterator const& interval, std::vector<rktl::String>& faults);
