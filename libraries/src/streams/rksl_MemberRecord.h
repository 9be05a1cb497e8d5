#pragma once

#include "streams/rksl_Serializable.h"

#include <list>
#include <map>
#include <string>

namespace rksl {

/// Members of a record in wire order; none is null.
using MemberList = std::list<Serializable*>;

/// Members of a record by their XML element name; null has no XML for the moment.
using NamedMembers = std::map<std::string, Serializable*>;

/// A record whose binary and XML forms follow from its members alone: it names them in fillSerializable, everything else is
/// here. Binary form: the members' bodies one behind the other. XML: the named members' elements in the order of their names.
/// A record that does not name all of its members has no XML form: toXML and fromXML throw rktl::Exception
/// "toXML() - Not implemented" and "fromXML() - Not implemented" with the class getClassName().
class MemberRecord : public Serializable {
public:
    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override;

    /// Children with unknown names are skipped. False, and as before, when xml holds no element or one without children.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// Appends a pointer to each member to list, in wire order, and enters those with an XML element name into named.
    /// The pointers are good as long as the record stands still; must change nothing, since const operations call it too.
    virtual void fillSerializable(MemberList& list, NamedMembers& named) = 0;

protected:
    /// The class as exceptions name it, such as "rkvl::Resolution".
    virtual char const* getClassName() const = 0;

private:
    struct Members {
        MemberList list;
        NamedMembers named;
    };
    Members members() const;
    Members membersWithXml(char const* refusal) const;
};

} // namespace rksl
