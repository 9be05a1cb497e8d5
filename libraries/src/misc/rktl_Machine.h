#pragma once

#include "misc/rktl_String.h"

#include <list>

namespace rktl {

/// The host name; "" when the system does not tell.
String getMachineName();

/// Hardware addresses of the interfaces that have an internet address, at most 64: five lower-case pairs of hex digits and one
/// in upper case, with ":" between. False on failure; when one interface's address could not be had, list holds those before it.
bool enumerateMACAddresses(std::list<String>& list);

} // namespace rktl
