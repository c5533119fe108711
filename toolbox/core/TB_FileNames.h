// The way between names in memory and names in a folder; the rule is in MacFiles.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The file name for a name; null when it would be empty or longer than file systems allow. The
// result contains no '/', no NUL, and is neither "." nor "..".
std::optional<std::string> TB_FileNameFor(std::string_view name);

// The name for a file name; null when the way back would not lead to this file name again, or the
// name does not fit a Str255.
std::optional<std::string> TB_NameForFile(std::string_view fileName);
