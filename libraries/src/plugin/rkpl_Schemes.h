#pragma once

#include "misc/rktl_Integer.h"
#include "plugin/rkpl_Plugin.h"
#include "streams/rksl_StringMap.h"

namespace rkpl {

/// Interface of plug-ins that can work in more than one way, each known by a name.
class Schemes : public Plugin {
public:
    static constexpr char const* identifier = "{D59FED8D-450F-41f4-8B0E-DF1989AF5FA9}";

    /// Enters each scheme by its name, with a value other than 0; keeps the entries of others.
    virtual void getSchemes(rksl::StringMap<rktl::Integer>& schemes) = 0;
};

} // namespace rkpl
