// What the user's signals do to a command.
#pragma once

#include "failure.h"

namespace limn {

// SIGINT, SIGTERM and SIGHUP end the process with ExitCode::Cancelled, and first remove the
// temporary file that it is writing. Those that were ignored at the start (nohup) stay ignored. A
// limit on file sizes becomes a failed write like any other.
void EndCleanlyOnSignals();

// The handler that does so.
void RemoveTemporaryAndLeave(int signal);

// The same with another code, for an end that nothing else can prevent. Safe in a signal handler.
[[noreturn]] void RemoveTemporaryAndExit(ExitCode code);

} // namespace limn
