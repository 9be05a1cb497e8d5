#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_List.h"
#include "streams/rksl_StringMap.h"

/// The command line as keys with values: "-key value" and "/key value". A value begins with neither '-' nor '/'; without one the
/// key's value is empty. An argument that belongs to no key is itself a key without a value. Of a key given twice the later one
/// counts; empty arguments name nothing.
class CommandLineArgs {
public:
    /// As main gets them.
    CommandLineArgs(int argc, char** argv);
    virtual ~CommandLineArgs() = default;

    rktl::String const& programName() const { return mProgramName; }
    bool has(rktl::String const& key) const { return mArguments.count(key) > 0; }
    /// "" for an unknown key.
    rktl::String value(rktl::String const& key) const;

private:
    void init(rksl::List<rktl::String> const& arguments);

    rksl::StringMap<rktl::String> mArguments;
    rktl::String mProgramName;
};
