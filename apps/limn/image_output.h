// Writing a lit photograph in the format that its name asks for.
#pragma once

#include "atomic_file.h"
#include "image_file.h"

#include <string>
#include <vector>

namespace limn {

// An output name as it is written on the command line, "lit.jpg[Q=92]", taken apart.
struct OutputName {
  std::string path;    // "lit.jpg"
  std::string options; // "[Q=92]", or empty
};
OutputName ParseOutputName(const std::string& text);

// Whether an image can be written under a name like this one, going by its extension.
bool IsWritableName(const std::string& path);

// Fails when the format or its options do not exist (WrongUsage), before any work is done.
void CheckOutputFormat(const OutputName& name);

// Writes the photograph, with its metadata, to `target` (as ResolveTarget gives it). Channels that
// the format cannot hold are left out, which is added to the photograph's notices. The old file, if
// any, stays until the new one is complete. Throws Failure(CannotWrite or NoMemory).
void WritePhotograph(Photograph& photograph, const OutputName& name, const std::string& target,
                     Existing existing);

} // namespace limn
