#include "misc/rktl_FindFiles.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace rktl {

namespace fs = std::filesystem;

void findFiles(std::list<String>& list, String const& directory, String const& pattern, bool recursive)
{
    std::error_code error;
    std::set<fs::directory_entry> entries;
    for (fs::directory_iterator entry(directory.empty() ? "." : directory.c_str(), error), end; !error && entry != end;
         entry.increment(error))
        entries.insert(*entry);

    String const prefix = directory.empty() ? String() : String(directory + "/");
    std::list<String> const pieces = pattern == "*.*" ? std::list<String>() : pattern.tokenize("*");
    for (fs::directory_entry const& entry : entries) {
        String const name = entry.path().filename().string();
        auto const isInName = [&name](String const& piece) { return name.find(piece) != String::npos; };
        if (entry.is_directory(error)) {
            if (recursive && !entry.is_symlink(error))
                findFiles(list, prefix + name, pattern, recursive);
        } else if (std::all_of(pieces.begin(), pieces.end(), isInName)) {
            list.push_back(prefix + name);
        }
    }
}

} // namespace rktl
