#pragma once

#include "misc/rktl_String.h"

#include <list>

namespace rktl {

/// Adds the files in directory to list, with directory and "/" before their names; an empty directory is the current one and
/// puts nothing before them. Sorted by name within each directory. A directory that cannot be opened adds nothing.
/// pattern: "*.*" for all; of others, a name has to hold each piece between the "*", in any order.
/// recursive: directories are searched too, symbolic links to directories are not.
void findFiles(std::list<String>& list, String const& directory, String const& pattern, bool recursive);

} // namespace rktl
