// Reading a whole file that a stranger may have named: a style's, or another small one.
#ifndef LM_SMALL_FILE_H
#define LM_SMALL_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The content of a regular file of at most `limit` bytes. False for anything else, a pipe, a device
// or a folder too, without waiting for a pipe's other end and without reading a longer file
// whole; `why` is then what is wrong, to follow the file's name and a colon.
bool LM_ReadSmallFile(const std::string& path, size_t limit, std::vector<uint8_t>& content,
                      std::string& why);

#endif
