#pragma once

#include "streams/rksl_Command.h"

/// A command to a machine, a camera or a spy, which its url names. The families of commands derive from it; on the wire they
/// are all rksl::Command. Errors are rktl::Exception.
class MeridaneCmd : public rksl::Command {
public:
    /// Throws "Unable to validate URL." for a url that validate refuses.
    MeridaneCmd(unsigned int type, unsigned int subType, rktl::url const& url);

    /// Takes over a record as it arrived, whatever its url; the objects are shared with it.
    explicit MeridaneCmd(rksl::Command const& command);
    MeridaneCmd& operator=(rksl::Command const& command);
    MeridaneCmd(MeridaneCmd const&) = default;
    MeridaneCmd& operator=(MeridaneCmd const&) = default;

    /// Whether the scheme is "meridane" or "dvc", in any case.
    static bool validate(rktl::url const& url);

    /// The name of the sub type alone.
    rktl::String getCommandString() const override;

    virtual rktl::String getComandName() const;

    // Parts of the address in the url, "" when it is none. display: in words for people.
    virtual rktl::String getSpyName(bool display) const;
    virtual rktl::String getCameraName(bool display) const;
    virtual rktl::String getMachineName() const;
};
