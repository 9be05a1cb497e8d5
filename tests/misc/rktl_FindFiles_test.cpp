#include <gtest/gtest.h>

#include "misc/rktl_FindFiles.h"
#include "support/TempFolder.h"

#include <fstream>

using rktl::String;

namespace {

std::string found(std::string const& folder, char const* pattern, bool recursive)
{
    std::list<String> list{"before"};
    rktl::findFiles(list, folder, pattern, recursive);
    std::string text = String::join(list, " ");
    for (size_t at; (at = text.find(folder + "/")) != std::string::npos;)
        text.erase(at, folder.size() + 1);
    return text;
}

} // namespace

TEST(FindFiles, PatternPiecesMayStandInAnyOrder)
{
    TempFolder const folder;
    std::filesystem::create_directories(folder / "sub.xml/deep");
    for (char const* name : {"b.xml", "a.txt", "xml.a", "sub.xml/c.xml", "sub.xml/deep/d.xml"})
        std::ofstream(folder / name) << "x";
    std::filesystem::create_directory_symlink(folder.path(), folder / "loop");

    EXPECT_EQ("before a.txt b.xml xml.a", found(folder.path(), "*.*", false));
    EXPECT_EQ("before b.xml", found(folder.path(), "*.xml", false));
    EXPECT_EQ("before xml.a", found(folder.path(), ".a*xml", false));
    EXPECT_EQ("before a.txt b.xml xml.a", found(folder.path(), "*", false));
    EXPECT_EQ("before b.xml sub.xml/c.xml sub.xml/deep/d.xml", found(folder.path(), "*.xml", true));
    EXPECT_EQ("before", found(folder / "missing", "*.*", true));
}
