// Reading a whole file that a stranger may have named: a style's, or another small one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace limn {

// The content of a regular file of at most `limit` bytes. Throws Failure(BadInput) for anything
// else, a pipe, a device or a folder too, without waiting for a pipe's other end and without
// reading a longer file whole.
std::vector<uint8_t> ReadSmallFile(const std::string& path, size_t limit);

} // namespace limn
