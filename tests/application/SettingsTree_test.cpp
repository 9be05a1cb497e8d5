#include "application/SettingsTree.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string repeat(std::string const& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string nested(int depth)
{
    return repeat("<a>", depth) + repeat("</a>", depth);
}

TEST(SettingsTree, KeepsElementsInTheirOrderWithTheirText)
{
    SettingsTree tree;
    ASSERT_TRUE(tree.parse("ignored<r>dropped<a>  3 </a>\n<b> \t\n</b><c><d>x>y</d> tail</c><e id='1'/>end</r></x><garbage"));
    treeNode const& root = tree.root();
    EXPECT_STREQ("r", root.tag);
    EXPECT_STREQ("end", root.value);
    auto const children = childrenOf(root);
    ASSERT_EQ(4u, children.size());
    EXPECT_STREQ("a", children[0]->tag);
    EXPECT_STREQ("  3 ", children[0]->value);
    EXPECT_STREQ("", children[1]->value);
    EXPECT_STREQ(" tail", children[2]->value);
    ASSERT_EQ(1, children[2]->childCount);
    EXPECT_STREQ("x>y", children[2]->children[0]->value);
    EXPECT_STREQ("e", children[3]->tag);
}

TEST(SettingsTree, TakesOnlyControlCharactersAndBlanksForWhiteSpace)
{
    SettingsTree tree;
    ASSERT_TRUE(tree.parse("<r><a>\x01\x1f </a><b> \xc3\xa9</b><c>!</c></r>")); // bytes above 127 are text
    EXPECT_STREQ("", tree.root().children[0]->value);
    EXPECT_STREQ(" \xc3\xa9", tree.root().children[1]->value);
    EXPECT_STREQ("!", tree.root().children[2]->value);
}

TEST(SettingsTree, RefusesWhatIsNotProperlyNested)
{
    for (char const* text : {"", "no tags", "<r>", "<r", "<r><a></r></a>", "<r><a></b></r>", "</r>", "<r></r", "<r><a></a>",
             "<?xml version=\"1.0\"?><r></r>", "<r><a id=\"1\">2</a></r>"}) {
        SCOPED_TRACE(text);
        SettingsTree tree;
        EXPECT_FALSE(tree.parse(text));
        EXPECT_EQ(0, tree.root().childCount);
        EXPECT_STREQ("", tree.root().tag);
    }
}

TEST(SettingsTree, RefusesWhatExceedsItsRecord)
{
    std::string const name(62, 'n'); // the closing tag has 63 characters
    struct {
        std::string fits;
        std::string exceeds;
    } const cases[] = {
        {"<" + name + "></" + name + ">", "<" + name + "n></" + name + "n>"},
        {"<r><" + name + "/></r>", "<r><" + name + "n/></r>"},
        {"<r>" + std::string(255, 'v') + "</r>", "<r>" + std::string(256, 'v') + "</r>"},
        {"<r>" + std::string(1000, ' ') + "</r>", "<r>" + std::string(1000, ' ') + ".</r>"},
        {"<r>" + std::string(1000, 'd') + "<a/></r>", "<r><a/>" + std::string(1000, 'd') + "</r>"},
        {"<r>" + repeat("<a/>", 64) + "</r>", "<r>" + repeat("<a/>", 65) + "</r>"},
        {"<r>" + repeat("<a></a>", 64) + "</r>", "<r>" + repeat("<a></a>", 65) + "</r>"},
        {nested(64), nested(65)},
        {"<r></r>" + std::string(settingsTextMax - 7, ' '), "<r></r>" + std::string(settingsTextMax - 6, ' ')},
    };
    for (auto const& [fits, exceeds] : cases) {
        SCOPED_TRACE(fits.substr(0, 80));
        SettingsTree tree;
        EXPECT_TRUE(tree.parse(fits.c_str()));
        EXPECT_FALSE(tree.parse(exceeds.c_str()));
    }
}

} // namespace
