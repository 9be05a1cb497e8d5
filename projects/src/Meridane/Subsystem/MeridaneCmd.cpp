#include "Meridane/Subsystem/MeridaneCmd.h"

#include "BaseClasses/MeridaneAddress.h"
#include "misc/rktl_Exception.h"
#include "misc/rktl_url.h"

#include <optional>

namespace {

std::optional<MeridaneAddress> addressOf(rksl::Command const& command)
{
    MeridaneAddress address;
    if (!address.fromURL(rktl::url(command.getURL())))
        return std::nullopt;
    return address;
}

} // namespace

MeridaneCmd::MeridaneCmd(unsigned int type, unsigned int subType, rktl::url const& url)
    : rksl::Command(rktl::String(url), type, subType)
{
    if (!validate(url))
        throw rktl::Exception("projects/src/Meridane/Subsystem/MeridaneCmd", "MeridaneCmd", "Unable to validate URL.");
}

MeridaneCmd::MeridaneCmd(rksl::Command const& command)
    : rksl::Command(command)
{
}

MeridaneCmd& MeridaneCmd::operator=(rksl::Command const& command)
{
    rksl::Command::operator=(command);
    return *this;
}

bool MeridaneCmd::validate(rktl::url const& url)
{
    return url.mScheme.iCompare("meridane") == 0 || url.mScheme.iCompare("dvc") == 0;
}

rktl::String MeridaneCmd::getCommandString() const
{
    return getCommandSubName(getCommandSubType());
}

rktl::String MeridaneCmd::getComandName() const
{
    return "MeridaneCmd";
}

rktl::String MeridaneCmd::getSpyName(bool display) const
{
    auto const address = addressOf(*this);
    return address ? address->getSpyName(display) : rktl::String();
}

rktl::String MeridaneCmd::getCameraName(bool display) const
{
    auto const address = addressOf(*this);
    return address ? address->getCameraName(display) : rktl::String();
}

rktl::String MeridaneCmd::getMachineName() const
{
    auto const address = addressOf(*this);
    return address ? address->getMachine() : rktl::String();
}
