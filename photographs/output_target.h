// Where a result may be written.
#pragma once

#include "image_output.h"

#include <string>

namespace limn {

// What is wrong with --json beside a picture on standard output.
constexpr const char* JSON_AND_PICTURE =
    "--json would be mixed with the picture on standard output";

// Fails (CannotWrite) when the output is there and may not be replaced (AlreadyThere), is the input
// itself, or is nothing that can be written to, such as a terminal (WrongUsage).
void CheckTarget(const std::string& input, const OutputName& output, Existing existing);

// Fails (CannotWrite) when nothing can be written into the folder of `target`, or the nearest that
// is there. Writes nothing.
void CheckFolder(const std::string& target);

} // namespace limn
