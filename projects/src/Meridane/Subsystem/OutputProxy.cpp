#include "Meridane/Subsystem/OutputProxy.h"

OutputProxy::OutputProxy(unsigned int port, rktl::Logger* logger)
    : LogInterface(logger)
{
    if (port != 0)
        log(rktl::LogType::Warning, "Port %u is not served: this build has no object server.", port);
}

bool OutputProxy::getRequestedImages(rksl::Set<rktl::String>&, rkvl::Resolution&)
{
    return false;
}

void OutputProxy::updateFrameListeners(Frame&) { }
