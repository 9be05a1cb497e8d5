#pragma once

#include "misc/rktl_LogType.h"

namespace rktl {
class Logger;
class String;
}

/// Base of whatever logs: it passes lines to a logger, which is not owned, and drops them while there is none.
class LogInterface {
public:
    explicit LogInterface(rktl::Logger* logger = nullptr)
        : mLogger(logger)
    {
    }

    virtual ~LogInterface() = default;

    /// null: no logger. Not to be called while another thread logs through this object.
    virtual void setLogger(rktl::Logger* logger) { mLogger = logger; }

    /// False without a logger, or when the logger's worker does not run. Any thread.
    virtual bool log(rktl::LogType type, rktl::String const& text);

    /// The text by the directives of printf. A text from elsewhere is never the format: it goes through the other form, or "%s".
    [[gnu::format(printf, 3, 4)]] bool log(rktl::LogType type, char const* format, ...);

protected:
    rktl::Logger* mLogger;
};
