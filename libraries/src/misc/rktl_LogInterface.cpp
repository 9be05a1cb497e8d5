#include "misc/rktl_LogInterface.h"

#include "misc/rktl_Logger.h"
#include "misc/rktl_String.h"

#include <cstdarg>

bool LogInterface::log(rktl::LogType type, rktl::String const& text)
{
    return mLogger && mLogger->log(type, text);
}

bool LogInterface::log(rktl::LogType type, char const* format, ...)
{
    if (!mLogger)
        return false;
    va_list arguments;
    va_start(arguments, format);
    rktl::String const text = rktl::String::fromVAList(format, arguments);
    va_end(arguments);
    return log(type, text);
}
