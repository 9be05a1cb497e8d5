#include "application/SettingsTree.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

/// A tag, and the text between it and the tag before.
struct XmlTag {
    enum class Kind { Opening, Closing, Empty };

    Kind kind;
    std::string_view name;
    std::string_view textBefore;
};

/// Copies a text that has been found to fit.
template <size_t Size> void store(std::string_view text, char (&target)[Size])
{
    std::memcpy(target, text.data(), text.size());
    target[text.size()] = 0;
}

/// Takes the next tag from the front of rest. False when there is none or its text is too long.
bool parseXmlBuf(std::string_view& rest, XmlTag& tag)
{
    size_t const begin = rest.find('<');
    size_t const end = rest.find('>', std::min(begin, rest.size()));
    if (end == std::string_view::npos)
        return false;
    std::string_view const content = rest.substr(begin + 1, end - begin - 1);
    if (content.size() >= sizeof(treeNode::tag))
        return false;
    tag.textBefore = rest.substr(0, begin);
    rest.remove_prefix(end + 1);
    if (content.starts_with('/')) {
        tag.kind = XmlTag::Kind::Closing;
        tag.name = content.substr(1);
    } else if (content.ends_with('/')) {
        tag.kind = XmlTag::Kind::Empty;
        tag.name = content.substr(0, std::min(content.find(' '), content.size() - 1));
    } else {
        tag.kind = XmlTag::Kind::Opening;
        tag.name = content;
    }
    return true;
}

/// The open element of that level. There is one at most: an element can only be added to the innermost open one, so the open
/// elements are a path on which each is the last child of the one before.
treeNode* findOpen(treeNode* root, uint32_t level)
{
    treeNode* node = root;
    while (node->level != level) {
        if (node->childCount == 0)
            return nullptr;
        node = node->children[node->childCount - 1];
    }
    return node->closed ? nullptr : node;
}

treeNode* findPoint2Add(treeNode* root, uint32_t level)
{
    return findOpen(root, level - 1);
}

treeNode* findPoint2Close(treeNode* root, std::string_view name, uint32_t level)
{
    treeNode* const node = level > 0 ? findOpen(root, level) : nullptr;
    return node && node->tag == name ? node : nullptr;
}

/// An open element of that level, the root itself for level 1. Null when a limit is reached.
treeNode* addNode(treeNode* root, std::string_view name, uint32_t level)
{
    treeNode* node = root;
    if (level > 1) {
        treeNode* const parent = findPoint2Add(root, level);
        if (!parent || level > settingsDepthMax || parent->childCount == std::ssize(parent->children))
            return nullptr;
        node = new treeNode();
        parent->children[parent->childCount++] = node;
    }
    store(name, node->tag);
    node->level = level;
    return node;
}

void close(treeNode* node)
{
    node->closed = 1;
    --node->level;
}

bool addEmptyNode(treeNode* root, std::string_view name, uint32_t level)
{
    treeNode* const node = addNode(root, name, level);
    if (node)
        close(node);
    return node;
}

/// False when no open element matches or the text is too long.
bool closeNode(treeNode* root, XmlTag const& tag, uint32_t level)
{
    treeNode* const node = findPoint2Close(root, tag.name, level);
    if (!node)
        return false;
    bool const isBlank =
        std::all_of(tag.textBefore.begin(), tag.textBefore.end(), [](char c) { return static_cast<unsigned char>(c) < 33; });
    if (!isBlank) {
        if (tag.textBefore.size() >= sizeof(node->value))
            return false;
        store(tag.textBefore, node->value);
    }
    close(node);
    return true;
}

bool parseTree(std::string_view rest, treeNode* root)
{
    uint32_t depth = 0;
    do {
        XmlTag tag;
        if (!parseXmlBuf(rest, tag))
            return false;
        switch (tag.kind) {
        case XmlTag::Kind::Opening:
            if (!addNode(root, tag.name, ++depth))
                return false;
            break;
        case XmlTag::Kind::Closing:
            if (!closeNode(root, tag, depth--))
                return false;
            break;
        case XmlTag::Kind::Empty:
            if (!addEmptyNode(root, tag.name, depth + 1))
                return false;
            break;
        }
    } while (depth > 0);
    return true;
}

} // namespace

int xml2Tree(char const* text, treeNode* root)
{
    *root = {};
    std::string_view const document(text);
    if (document.size() <= settingsTextMax && parseTree(document, root))
        return 0;
    freeTree(root);
    return -1;
}

void freeTree(treeNode* root)
{
    for (treeNode* const child : std::span(root->children, static_cast<size_t>(root->childCount))) {
        freeTree(child);
        delete child;
    }
    *root = {};
}

bool SettingsTree::parse(char const* text)
{
    freeTree(&mRoot);
    return xml2Tree(text, &mRoot) == 0;
}
