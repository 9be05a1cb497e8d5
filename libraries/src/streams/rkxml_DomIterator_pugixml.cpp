#include "streams/rkxml_DomIterator.h"

#include "streams/rksl_StringMap.h"
#include "streams/rkxml_Document.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <pugixml.hpp>

namespace rkxml {

namespace {

/// Records nest a dozen deep. Whoever reads an element recursively can rely on this.
constexpr unsigned int MAX_DEPTH = 256;

// Text comes back as it was written: no line ends or blanks are normalised or left out. Declarations, comments and document
// types are passed over.
constexpr unsigned int PARSING = pugi::parse_escapes | pugi::parse_cdata | pugi::parse_ws_pcdata | pugi::parse_fragment;

bool isElement(pugi::xml_node node)
{
    return node.type() == pugi::node_element;
}

bool isText(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

bool isBlank(char const* text)
{
    return text[std::strspn(text, " \t\r\n")] == '\0';
}

pugi::xml_node nextElement(pugi::xml_node node)
{
    while (node && !isElement(node))
        node = node.next_sibling();
    return node;
}

pugi::xml_node previousElement(pugi::xml_node node)
{
    while (node && !isElement(node))
        node = node.previous_sibling();
    return node;
}

/// The one root element; null when there are several, or text beside it.
pugi::xml_node rootOf(pugi::xml_document const& document)
{
    pugi::xml_node root;
    for (pugi::xml_node const node : document.children()) {
        if ((isText(node) && !isBlank(node.value())) || (isElement(node) && root))
            return pugi::xml_node();
        if (isElement(node))
            root = node;
    }
    return root;
}

/// In a walk of constant memory: depth is what this guards against.
bool isTooDeep(pugi::xml_node root)
{
    unsigned int depth = 1; // of node, the root being 1
    for (pugi::xml_node node = root;;) {
        if (isElement(node) && depth > MAX_DEPTH)
            return true;
        if (node.first_child()) {
            node = node.first_child();
            ++depth;
            continue;
        }
        while (node != root && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        if (node == root)
            return false;
        node = node.next_sibling();
    }
}

/// A writer of pugixml that appends to a text.
struct TextWriter : pugi::xml_writer {
    void write(void const* data, size_t size) override { text.append(static_cast<char const*>(data), size); }

    rktl::String text;
};

/// Where the document type declaration begins and ends (behind its ">"); both 0 when there is none.
struct Span {
    size_t begin = 0;
    size_t end = 0;
};

/// Behind the next what, or the end of the text.
size_t behind(std::string const& xml, char const* what, size_t from)
{
    size_t const found = xml.find(what, from);
    return found == std::string::npos ? xml.size() : found + std::strlen(what);
}

/// Behind the ">" of a declaration that begins there; a ">" in quotes, in comments or in its internal subset does not count.
size_t doctypeEnd(std::string const& xml, size_t begin)
{
    bool inSubset = false;
    for (size_t i = begin; i < xml.size(); ++i) {
        if (xml.compare(i, 4, "<!--") == 0)
            i = behind(xml, "-->", i) - 1;
        else if (xml[i] == '"' || xml[i] == '\'')
            i = std::min(xml.find(xml[i], i + 1), xml.size() - 1);
        else if (xml[i] == '[')
            inSubset = true;
        else if (xml[i] == ']')
            inSubset = false;
        else if (xml[i] == '>' && !inSubset)
            return i + 1;
    }
    return xml.size();
}

Span findDoctype(std::string const& xml)
{
    size_t begin = xml.find('<');
    while (begin != std::string::npos && xml.compare(begin, 9, "<!DOCTYPE") != 0) {
        bool const comment = xml.compare(begin, 4, "<!--") == 0;
        if (!comment && xml.compare(begin, 2, "<?") != 0)
            return Span(); // the root element
        begin = xml.find('<', behind(xml, comment ? "-->" : "?>", begin));
    }
    if (begin == std::string::npos)
        return Span();
    return {begin, doctypeEnd(xml, begin)};
}

} // namespace

/// Shared by the copies of a cursor and never changed.
struct DomIterator::Position {
    std::shared_ptr<pugi::xml_document const> document;
    pugi::xml_node parent;
    pugi::xml_node element; // null: behind the last child of parent

    /// Grows in document order: the place of the element's name in the text, or, behind the last child of parent, a place
    /// behind the name of the last element below parent.
    ptrdiff_t order() const
    {
        if (element)
            return element.offset_debug();
        pugi::xml_node last = parent;
        for (pugi::xml_node below = last; below; below = previousElement(below.last_child()))
            last = below;
        return last.offset_debug() + 1;
    }
};

DomIterator::DomIterator() = default;
DomIterator::~DomIterator() = default;
DomIterator::DomIterator(DomIterator const&) = default;
DomIterator& DomIterator::operator=(DomIterator const&) = default;

DomIterator::DomIterator(std::shared_ptr<Position const> position)
    : mPosition(std::move(position))
{
}

DomIterator DomIterator::parse(rktl::String const& xml)
{
    auto const document = std::make_shared<pugi::xml_document>();
    if (!document->load_buffer(xml.data(), xml.size(), PARSING, pugi::encoding_utf8))
        return DomIterator();
    pugi::xml_node const root = rootOf(*document);
    if (!root || isTooDeep(root))
        return DomIterator();
    return DomIterator(std::make_shared<Position const>(Position{document, *document, root}));
}

DomIterator DomIterator::parse(rktl::String const& xml, rktl::String const& dtd)
{
    return parse(addDTD(xml, dtd));
}

rktl::String DomIterator::whyRefused(rktl::String const& xml)
{
    pugi::xml_document document;
    pugi::xml_parse_result const result = document.load_buffer(xml.data(), xml.size(), PARSING, pugi::encoding_utf8);
    if (!result) {
        size_t const offset = std::min(static_cast<size_t>(std::max<ptrdiff_t>(result.offset, 0)), xml.size());
        int const line = 1 + static_cast<int>(std::count(xml.begin(), xml.begin() + static_cast<ptrdiff_t>(offset), '\n'));
        return rktl::String::fromFormat("line %d: %s", line, result.description());
    }
    pugi::xml_node const root = rootOf(document);
    if (!root)
        return "line 1: there is not exactly one element around everything";
    return isTooDeep(root) ? rktl::String::fromFormat("the elements are nested more than %u deep", MAX_DEPTH) : rktl::String();
}

bool DomIterator::atEnd() const
{
    return !mPosition || !mPosition->element;
}

bool DomIterator::hasChildren() const
{
    return !childrenBegin().atEnd();
}

unsigned int DomIterator::numChildren() const
{
    unsigned int count = 0;
    for (DomIterator child = childrenBegin(); !child.atEnd(); child.nextSibling())
        ++count;
    return count;
}

unsigned int DomIterator::numChildren(rktl::String const& name) const
{
    unsigned int count = 0;
    for (DomIterator child = childrenBegin(); !child.atEnd(); child.nextSibling())
        count += child.getName() == name;
    return count;
}

DomIterator DomIterator::childrenBegin() const
{
    if (atEnd())
        return DomIterator();
    pugi::xml_node const first = nextElement(mPosition->element.first_child());
    return DomIterator(std::make_shared<Position const>(Position{mPosition->document, mPosition->element, first}));
}

DomIterator DomIterator::childrenEnd() const
{
    if (atEnd())
        return DomIterator();
    return DomIterator(std::make_shared<Position const>(Position{mPosition->document, mPosition->element, pugi::xml_node()}));
}

void DomIterator::nextSibling()
{
    if (atEnd())
        return;
    pugi::xml_node const next = nextElement(mPosition->element.next_sibling());
    mPosition = std::make_shared<Position const>(Position{mPosition->document, mPosition->parent, next});
}

void DomIterator::previousSibling()
{
    if (!mPosition)
        return;
    pugi::xml_node const before = atEnd() ? mPosition->parent.last_child() : mPosition->element.previous_sibling();
    mPosition = std::make_shared<Position const>(Position{mPosition->document, mPosition->parent, previousElement(before)});
}

DomIterator DomIterator::findChild(rktl::String const& name) const
{
    DomIterator child = childrenBegin();
    while (!child.atEnd() && child.getName() != name)
        child.nextSibling();
    return child;
}

DomIterator DomIterator::searchChild(rktl::String const& name) const
{
    return findChild(name);
}

rktl::String DomIterator::getName() const
{
    return atEnd() ? rktl::String() : rktl::String(mPosition->element.name());
}

void DomIterator::getName(rktl::String& name) const
{
    name = getName();
}

rktl::String DomIterator::getValue() const
{
    rktl::String value;
    if (!atEnd())
        for (pugi::xml_node const node : mPosition->element.children())
            if (isText(node))
                value += node.value();
    // Blanks between children are layout; blanks alone are a text.
    return isBlank(value.c_str()) && hasChildren() ? rktl::String() : value;
}

bool DomIterator::hasValue() const
{
    return !getValue().empty();
}

bool DomIterator::hasAttributes() const
{
    return !atEnd() && mPosition->element.first_attribute();
}

bool DomIterator::hasAttribute(rktl::String const& name) const
{
    return !atEnd() && mPosition->element.attribute(name.c_str());
}

rktl::String DomIterator::getAttribute(rktl::String const& name) const
{
    return atEnd() ? rktl::String() : rktl::String(mPosition->element.attribute(name.c_str()).value());
}

rksl::StringMap<rktl::String> DomIterator::attributes() const
{
    rksl::StringMap<rktl::String> all;
    if (!atEnd())
        for (pugi::xml_attribute const attribute : mPosition->element.attributes())
            all.emplace(attribute.name(), attribute.value());
    return all;
}

rktl::String DomIterator::toXML() const
{
    TextWriter writer;
    if (!atEnd())
        mPosition->element.print(writer, "", pugi::format_raw, pugi::encoding_utf8);
    return writer.text;
}

bool DomIterator::isEqual(DomIterator const& other) const
{
    if (!mPosition || !other.mPosition)
        return mPosition == other.mPosition;
    return mPosition->document == other.mPosition->document && mPosition->parent == other.mPosition->parent &&
        mPosition->element == other.mPosition->element;
}

bool DomIterator::operator<(DomIterator const& other) const
{
    if (!mPosition || !other.mPosition)
        return !mPosition && other.mPosition;
    if (mPosition->document != other.mPosition->document)
        return std::less<>()(mPosition->document.get(), other.mPosition->document.get());
    return mPosition->order() < other.mPosition->order();
}

rktl::String DomIterator::removeDoctype(rktl::String const& xml)
{
    Span const doctype = findDoctype(xml);
    return xml.substr(0, doctype.begin) + xml.substr(doctype.end);
}

rktl::String DomIterator::addDTD(rktl::String const& xml, rktl::String const& dtd)
{
    rktl::String document = removeDoctype(xml);
    size_t const declaration = document.hasPrefix("<?xml") ? document.find("?>") : std::string::npos;
    document.insert(declaration == std::string::npos ? 0 : declaration + 2, dtd);
    return document;
}

void initialize() { }

void uninitialize() { }

rktl::String open(char const* tag)
{
    return tag ? rktl::String::fromFormat("<%s>", tag) : rktl::String();
}

rktl::String close(char const* tag)
{
    return tag ? rktl::String::fromFormat("</%s>", tag) : rktl::String();
}

} // namespace rkxml
