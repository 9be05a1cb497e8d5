#pragma once

#include "misc/rktl_Countdown.h"
#include "misc/rktl_LogType.h"
#include "misc/rktl_String.h"

class LogInterface;

/// Log lines that clients cause: five a second at most, so that nobody who reaches the port can fill the log. How many were
/// left out is said with the next line. Belongs to whoever holds the clients' list.
class ClientLog {
public:
    /// log: not owned.
    explicit ClientLog(LogInterface& log);

    void line(rktl::LogType type, rktl::String const& text);

private:
    LogInterface& mLog;
    rktl::Countdown mSecond;
    unsigned int mLines = 0;   // in this second
    unsigned int mOmitted = 0; // since the last line
};
