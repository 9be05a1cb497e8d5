#include "misc/rktl_LogMsg.h"

#include "misc/rktl_String.h"

#include <cstring>

namespace rktl {

LogMsgPtr::LogMsgPtr(LogType type, String const& text)
    : mType(type)
{
    text.abbreviate(sizeof mText - 1).copyString(mText, sizeof mText - 1);
}

bool LogMsgPtr::operator==(LogMsgPtr const& other) const
{
    return mType == other.mType && std::strcmp(mText, other.mText) == 0;
}

} // namespace rktl
