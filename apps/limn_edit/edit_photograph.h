// Lighting a photograph by hand: the plug-in's dialog on it, then the run, then the file.
#pragma once

#include "edit_options.h"
#include "failure.h"

namespace limn {

// Cancelled when the user pressed Cancel, in the dialog or during the run; then nothing is written.
// argc and argv belong to the desktop, and must live as long as the program. Throws Failure.
ExitCode EditPhotograph(const EditOptions& options, int& argc, char** argv);

} // namespace limn
