#pragma once

#include "misc/rktl_url.h"
#include "support/contraflow.h"
#include "support/loopback.h"

namespace support {

inline Bytes const endOfFile = hex("01 00 00 00 00 00 00 00");
inline rktl::url const embedded("meridane://localhost.localsite/Embedded");

} // namespace support

/// The application with a port, over a scene that does not end.
class ContraflowServer : public Contraflow {
protected:
    ContraflowServer() { writeSettings(settingsWith("")); }

    ChildProcess serve() { return start({{"CSDK_LOOP", "1"}}, "projects/contraflow", {"-port", std::to_string(mPort)}); }
    support::Connection connect() const { return support::Connection::toWithin(mPort, 10000); }

    uint16_t mPort = support::freePort();
};
