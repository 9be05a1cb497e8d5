#include "streams/rkxml_DomIterator.h"

#include "streams/rksl_StringMap.h"
#include "streams/rkxml_Document.h"

// The body for a camera: no document reader stands behind the cursor, and readers of XML find nothing.

namespace rkxml {

struct DomIterator::Position { };

DomIterator::DomIterator() = default;
DomIterator::~DomIterator() = default;
DomIterator::DomIterator(DomIterator const&) = default;
DomIterator& DomIterator::operator=(DomIterator const&) = default;

DomIterator DomIterator::parse(rktl::String const&)
{
    return DomIterator();
}

DomIterator DomIterator::parse(rktl::String const&, rktl::String const&)
{
    return DomIterator();
}

rktl::String DomIterator::whyRefused(rktl::String const&)
{
    return "this build reads no XML documents";
}

// Readers of a single value rely on this: they answer true, with the empty value.
bool DomIterator::atEnd() const
{
    return false;
}

bool DomIterator::hasChildren() const
{
    return false;
}

unsigned int DomIterator::numChildren() const
{
    return 0;
}

unsigned int DomIterator::numChildren(rktl::String const&) const
{
    return 0;
}

DomIterator DomIterator::childrenBegin() const
{
    return DomIterator();
}

DomIterator DomIterator::childrenEnd() const
{
    return DomIterator();
}

void DomIterator::nextSibling() { }

void DomIterator::previousSibling() { }

DomIterator DomIterator::findChild(rktl::String const&) const
{
    return DomIterator();
}

DomIterator DomIterator::searchChild(rktl::String const&) const
{
    return DomIterator();
}

rktl::String DomIterator::getName() const
{
    return rktl::String();
}

void DomIterator::getName(rktl::String& name) const
{
    name.clear();
}

rktl::String DomIterator::getValue() const
{
    return rktl::String();
}

bool DomIterator::hasValue() const
{
    return false;
}

bool DomIterator::hasAttributes() const
{
    return false;
}

bool DomIterator::hasAttribute(rktl::String const&) const
{
    return false;
}

rktl::String DomIterator::getAttribute(rktl::String const&) const
{
    return rktl::String();
}

rksl::StringMap<rktl::String> DomIterator::attributes() const
{
    return rksl::StringMap<rktl::String>();
}

rktl::String DomIterator::toXML() const
{
    return rktl::String();
}

bool DomIterator::isEqual(DomIterator const&) const
{
    return false;
}

bool DomIterator::operator<(DomIterator const&) const
{
    return false;
}

rktl::String DomIterator::removeDoctype(rktl::String const&)
{
    return rktl::String();
}

rktl::String DomIterator::addDTD(rktl::String const&, rktl::String const&)
{
    return rktl::String();
}

void initialize() { }

void uninitialize() { }

rktl::String open(char const*)
{
    return rktl::String();
}

rktl::String close(char const*)
{
    return rktl::String();
}

} // namespace rkxml
