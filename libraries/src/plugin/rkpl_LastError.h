#pragma once

#include "misc/rktl_String.h"
#include "plugin/rkpl_Plugin.h"

namespace rkpl {

/// Interface of plug-ins that keep the text of their last error.
class LastError : public Plugin {
public:
    /// "" when nothing went wrong.
    virtual rktl::String getLastError() const = 0;
};

} // namespace rkpl
