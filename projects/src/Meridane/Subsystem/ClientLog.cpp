#include "Meridane/Subsystem/ClientLog.h"

#include "misc/rktl_LogInterface.h"

namespace {

constexpr uint32_t period = 1000; // ms
constexpr unsigned int linesEachPeriod = 5;

} // namespace

ClientLog::ClientLog(LogInterface& log)
    : mLog(log)
    , mSecond(period)
{
}

void ClientLog::line(rktl::LogType type, rktl::String const& text)
{
    if (mSecond.hasExpired()) {
        mSecond.restart();
        mLines = 0;
    }
    if (mLines == linesEachPeriod) {
        ++mOmitted;
        return;
    }
    ++mLines;
    if (mOmitted > 0)
        mLog.log(rktl::LogType::Info, rktl::String::fromFormat("%u lines about clients were left out.", mOmitted));
    mOmitted = 0;
    mLog.log(type, text);
}
