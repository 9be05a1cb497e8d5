#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// One element of a settings text. A plain record; children are allocated by xml2Tree, the root lives with the caller.
struct treeNode {
    treeNode* children[64]; // in document order
    int32_t childCount;
    char value[256]; // the text directly before the closing tag; ends with a NUL
    char tag[64];    // the name; ends with a NUL
    uint32_t level;  // nesting depth, 1 for the root, and 1 less once the element is closed
    uint32_t closed; // 0 or 1
};

// The limits of the format, beside those that the sizes of the record set: a text that exceeds one is refused, so that a small
// file can neither fill the memory nor the stack.
constexpr uint32_t settingsDepthMax = 64;
constexpr size_t settingsTextMax = 256 * 1024; // bytes

/// Parses a settings text, a small dialect of XML without attributes, entities, comments and declarations; only "<name/>" may
/// have attributes, which are ignored. What comes after the root element is ignored. The tree is released with freeTree.
/// Returns 0, or -1 when an element is not closed, a closing tag matches no open element or a limit is exceeded; root is then
/// empty.
int xml2Tree(char const* text, treeNode* root);

/// Releases all that xml2Tree allocated under root, and empties root. root must come from xml2Tree, or be all zero.
void freeTree(treeNode* root);

/// Owns a parsed tree.
class SettingsTree {
public:
    SettingsTree() = default;
    ~SettingsTree() { freeTree(&mRoot); }
    SettingsTree(SettingsTree const&) = delete;
    SettingsTree& operator=(SettingsTree const&) = delete;

    /// In place of what was there. False, and empty, when xml2Tree refuses the text.
    bool parse(char const* text);

    treeNode const& root() const { return mRoot; }

private:
    treeNode mRoot = {};
};

inline std::span<treeNode const* const> childrenOf(treeNode const& node)
{
    return {node.children, static_cast<size_t>(node.childCount)};
}
