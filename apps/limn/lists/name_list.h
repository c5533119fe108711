// Files that list names.
#pragma once

#include <string>
#include <vector>

namespace limn {

// The names in the file `path`, or on standard input for "-", each ended by `end`, which may be
// missing after the last one; empty names are left out. A pipe is read to its end. Throws
// Failure(BadInput) when the list cannot be read, and for a name that no file can have.
std::vector<std::string> ReadNameList(const std::string& path, char end);

} // namespace limn
