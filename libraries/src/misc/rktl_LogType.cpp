#include "misc/rktl_LogType.h"

#include "misc/rktl_String.h"

namespace rktl {

String toString(LogType type)
{
    switch (type) {
    case LogType::Critical:
        return "CRIT";
    case LogType::Error:
        return "ERR";
    case LogType::Warning:
        return "WARN";
    case LogType::Status:
        return "STAT";
    case LogType::Info:
        return "INFO";
    }
    return "";
}

} // namespace rktl
