#pragma once

#include "misc/rktl_String.h"

#include <memory>

namespace rksl {
template <class V> class StringMap;
}

namespace rkxml {

/// A cursor that stands on one element of a parsed document, or behind the last of some siblings. Copies are cheap, share the
/// document, and move on their own; different threads may use different cursors of one document.
///
/// A program links one of two bodies. The one on a document parser gives what is said here; it refuses documents deeper than
/// 256 elements and knows no entities but XML's own five and numbers, so that nothing is fetched or blown up. The null cursor,
/// for a camera, reads nothing: atEnd is false, every cursor is empty, every text "", every number 0, and nothing moves.
///
/// Nothing in here throws for bad text. Only elements count as children and siblings.
class DomIterator {
public:
    /// Behind the end of nothing.
    DomIterator();
    virtual ~DomIterator();
    DomIterator(DomIterator const&);
    DomIterator& operator=(DomIterator const&);

    /// A cursor on the root element of a whole document; at end when the text is no well-formed document.
    static DomIterator parse(rktl::String const& xml);

    /// The same with a document type, as addDTD puts it in.
    static DomIterator parse(rktl::String const& xml, rktl::String const& dtd);

    /// Why parse refuses the text, for a person: "line 3: ..."; "" when it takes it. The null cursor says that it reads nothing.
    static rktl::String whyRefused(rktl::String const& xml);

    /// On no element: behind the last sibling, or after a parse that failed. Everything asked there answers as the null
    /// cursor does.
    bool atEnd() const;

    bool hasChildren() const;
    unsigned int numChildren() const;
    unsigned int numChildren(rktl::String const& name) const;

    /// On the first child, and behind the last: at end both when there is no child.
    DomIterator childrenBegin() const;
    DomIterator childrenEnd() const;

    /// From the last sibling nextSibling goes behind the end, and previousSibling back from there. From the first one
    /// previousSibling goes behind the end too.
    void nextSibling();
    void previousSibling();

    /// On the first child of that name; at end when there is none.
    DomIterator findChild(rktl::String const& name) const;
    DomIterator searchChild(rktl::String const& name) const;

    rktl::String getName() const;
    void getName(rktl::String& name) const;

    /// The element's own text, entities resolved, without that of its children; "" when nothing but blanks stands between
    /// children.
    rktl::String getValue() const;
    bool hasValue() const;

    bool hasAttributes() const;
    bool hasAttribute(rktl::String const& name) const;

    /// "" when absent.
    rktl::String getAttribute(rktl::String const& name) const;
    rksl::StringMap<rktl::String> attributes() const;

    /// The whole element as text that parse takes again.
    rktl::String toXML() const;

    /// Same place in the same document; document order.
    bool isEqual(DomIterator const& other) const;
    bool operator<(DomIterator const& other) const;

    /// xml without its "<!DOCTYPE ...>" declaration.
    static rktl::String removeDoctype(rktl::String const& xml);

    /// xml with dtd, a whole "<!DOCTYPE ...>" declaration, in place of its own, behind the "<?xml ...?>" line.
    static rktl::String addDTD(rktl::String const& xml, rktl::String const& dtd);

private:
    struct Position;
    explicit DomIterator(std::shared_ptr<Position const> position);

    std::shared_ptr<Position const> mPosition; // null: at end of nothing
};

} // namespace rkxml
