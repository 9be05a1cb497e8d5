#pragma once

#include "misc/rktl_LogMsg.h"
#include "misc/rktl_LogType.h"
#include "misc/rktl_MessagePump.h"
#include "misc/rktl_String.h"

namespace rktl {

class ElapsedTime;

using LogMessagePump = MessagePump<LogMsgQueue>;

/// Takes log lines from any thread and hands them, one after the other, to output on a worker thread. A line is finished on
/// the caller's thread and waits in a ring of 100: nobody waits for a disk, and when the worker falls behind, the oldest
/// lines are lost. Lines that come while the worker does not run go to standard error.
///
/// A derived class stops the logger in its own destructor, for output is gone afterwards.
class Logger : public LogMessagePump {
public:
    /// timeFormat: of TimeStamp::toString; an empty one leaves the time out of the lines.
    explicit Logger(String const& timeFormat);

    /// One line; the line feed is added unless text ends in one. False when the worker does not run.
    bool log(LogType type, String text);

    /// The text by the directives of printf. A text from elsewhere is never the format: it goes through the other form, or "%s".
    [[gnu::format(printf, 3, 4)]] bool log(LogType type, char const* format, ...);

    /// Has the ring emptied before it stops the worker, both within the limit.
    bool stop(ElapsedTime const& limit) override;

protected:
    void pump() override;

    /// The line: the time, a blank, the level's word in four characters, a blank, the text. Runs on the caller's thread.
    virtual String format(LogType const& type, String const& text);

    /// Writes a finished line, which may be cut, on the worker's thread. False: it stays in the ring until the next round.
    virtual bool output(LogType const& type, String const& line) = 0;

private:
    String mTimeFormat;
};

} // namespace rktl
