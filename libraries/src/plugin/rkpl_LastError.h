#pragma once

#include "plugin/rkpl_Plugin.h"

namespace rkpl {

/// Interface of plug-ins that keep the text of their last error. Plug-ins that report one bring the operations with them.
class LastError : public Plugin { };

} // namespace rkpl
