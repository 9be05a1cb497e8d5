#pragma once

#include "misc/rktl_LogType.h"
#include "misc/rktl_SmartQueue.h"

namespace rktl {

class String;

/// One finished log line as a plain value without use of the heap, so that a ring of them is allocated once.
class LogMsgPtr {
public:
    /// Empty text stands for no line at all.
    LogMsgPtr() = default;

    /// A text of 1024 characters or more is cut to 1023, the last three being "...".
    LogMsgPtr(LogType type, String const& text);

    LogMsgPtr(LogMsgPtr const&) = default;
    LogMsgPtr& operator=(LogMsgPtr const&) = default;
    virtual ~LogMsgPtr() = default;

    LogType getType() const { return mType; }
    char const* getText() const { return mText; }

    /// By level and text.
    bool operator==(LogMsgPtr const& other) const;

private:
    LogType mType = LogType::Error;
    char mText[1024] = {}; // ends with a NUL
};

using LogMsgQueue = SmartCircularQ<LogMsgPtr>;

} // namespace rktl
