// The content of a style's file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace limn {

// All bytes of a regular file of at most `limit` bytes. Throws Failure(LIMN_CANNOT_READ), also for
// pipes and devices, which might never end.
std::vector<uint8_t> ReadSmallFile(const std::string& path, size_t limit);

} // namespace limn
