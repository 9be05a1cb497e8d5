#include "application/Coordinator.h"
#include "application/Settings.h"
#include "application/SettingsTree.h"

#include <cstdlib>
#include <cstring>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Every element of a tree that was accepted is closed and within its limits.
void check(treeNode const& node, uint32_t depth)
{
    require(node.closed == 1 && node.level + 1 == depth && depth <= settingsDepthMax);
    require(std::memchr(node.tag, 0, sizeof(node.tag)) && std::memchr(node.value, 0, sizeof(node.value)));
    require(node.childCount >= 0 && node.childCount <= std::ssize(node.children));
    for (treeNode const* child : childrenOf(node))
        check(*child, depth + 1);
}

} // namespace

/// Any text as settings and as a nested value.
extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    rktl::String const text(reinterpret_cast<char const*>(data), size);
    SettingsTree tree;
    bool const isAccepted = tree.parse(text.c_str());
    if (isAccepted)
        check(tree.root(), 1);
    SettingsMap settings;
    require(parseSettings(text, settings) == isAccepted);
    require(settings.size() <= size_t(tree.root().childCount));
    rkml::LineSegment2D<float> line;
    Coordinator::parseLine(text, line);
    rksl::List<rkml::Polygon2D<float>> zones;
    Coordinator::parseZones(text, zones);
    return 0;
}
