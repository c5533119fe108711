// Where a result may be written.
#pragma once

#include "image_output.h"

#include <string>

namespace limn {

// Fails (CannotWrite) when the output is there and may not be replaced, is the input itself, or is
// nothing that can be written to.
void CheckTarget(const std::string& input, const OutputName& output, Existing existing);

// Makes the folder that `target` lies in, if need be. Throws Failure(CannotWrite).
void MakeFolder(const std::string& target);

} // namespace limn
