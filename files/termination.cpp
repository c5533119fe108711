#include "termination.h"

#include "atomic_file.h"

#include <csignal>
#include <unistd.h>

namespace limn {

void RemoveTemporaryAndExit(ExitCode code) {
  if (TemporaryInProgress()[0] != '\0')
    unlink(TemporaryInProgress());
  _exit(static_cast<int>(code));
}

void RemoveTemporaryAndLeave(int) {
  RemoveTemporaryAndExit(ExitCode::Cancelled);
}

void EndCleanlyOnSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    if (std::signal(signal, RemoveTemporaryAndLeave) == SIG_IGN)
      std::signal(signal, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace limn
