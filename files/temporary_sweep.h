// Temporary files that runs left behind when they were killed, or when the power failed.
#pragma once

#include <string>

namespace limn {

// Marks an open file as one that is being written, for as long as it is open; false when it has
// been swept, and its name is free, or somebody does not let go of it for a second. A file system
// without locks marks nothing and sweeps nothing.
bool HoldTemporary(int descriptor);

// Removes the temporary files of dead runs from a folder. What cannot be removed stays.
void SweepTemporaries(const std::string& folder);
// The same, but only once for each folder and process.
void SweepOnce(const std::string& folder);

} // namespace limn
