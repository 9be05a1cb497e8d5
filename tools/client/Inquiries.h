#pragma once

#include "Endpoint.h"

#include <atomic>
#include <ostream>
#include <string>
#include <vector>

namespace tools {

class Session;

/// What the server is and has: protocol and clock of its heartbeat, machines and cameras, names of debug images.
void printInfo(Endpoint const& endpoint, std::ostream& out);

/// Pings once a second, and says how long each answer took, and a summary.
/// count: 0 until stop. Throws ConnectionError when an answer takes more than 15 s.
void printPings(Endpoint const& endpoint, uint64_t count, std::ostream& out, std::atomic<bool> const& stop);

/// Throws std::runtime_error, naming what there is, unless the server offers all these images.
void requireImages(Session& session, std::vector<std::string> const& names);

} // namespace tools
