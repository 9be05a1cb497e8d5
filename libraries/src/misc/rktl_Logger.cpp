#include "misc/rktl_Logger.h"

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_TimeStamp.h"
#include "sync/rkst_Deadline.h"

#include <cstdarg>
#include <cstdio>

namespace rktl {

namespace {

constexpr unsigned int idleTimeOut = 60000; // ms
constexpr unsigned int ringCapacity = 100;  // lines

} // namespace

Logger::Logger(String const& timeFormat)
    : LogMessagePump(idleTimeOut)
    , mTimeFormat(timeFormat)
{
    reserve(ringCapacity);
}

bool Logger::log(LogType type, String text)
{
    if (mStopEvent.wait(0) || mNotRunningEvent.wait(0)) {
        String const line = format(type, text) + "\n";
        std::fwrite(line.data(), 1, line.size(), stderr);
        return false;
    }
    if (text.empty() || text.back() != '\n')
        text += '\n';
    push(LogMsgPtr(type, format(type, text)));
    return true;
}

bool Logger::log(LogType type, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    String const text = String::fromVAList(format, arguments);
    va_end(arguments);
    return log(type, text);
}

bool Logger::stop(ElapsedTime const& limit)
{
    rkst::Deadline const deadline(limit);
    if (!mStopEvent.wait(0) && !mNotRunningEvent.wait(0))
        setEvent(0, deadline.remaining(), nullptr);
    return LogMessagePump::stop(deadline.remainingTime());
}

void Logger::pump()
{
    for (;;) {
        LogMsgPtr const message = peek();
        String const line(message.getText());
        if (line.empty() || !output(message.getType(), line))
            return;
        pop(message);
    }
}

String Logger::format(LogType const& type, String const& text)
{
    String line;
    if (!mTimeFormat.empty())
        line = TimeStamp::systemTime().toString(mTimeFormat) + " ";
    return line + toString(type).padEnd(4, ' ') + " " + text;
}

} // namespace rktl
