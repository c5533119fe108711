// limn-edit: what `limn edit` becomes.
#include "edit_photograph.h"

#include "atomic_file.h"
#include "report.h"

#include <csignal>
#include <unistd.h>

namespace {

using limn::ExitCode;

void RemoveTemporaryAndLeave(int) {
  if (limn::TemporaryInProgress()[0] != '\0')
    unlink(limn::TemporaryInProgress());
  _exit(static_cast<int>(ExitCode::Cancelled));
}

void TakeSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    if (std::signal(signal, RemoveTemporaryAndLeave) == SIG_IGN)
      std::signal(signal, SIG_IGN); // a hang-up that was ignored at the start stays ignored
  std::signal(SIGXFSZ, SIG_IGN);    // a limit on file sizes is a failed write like any other
}

ExitCode Run(int& argc, char** argv) {
  CLI::App app("Set the lights of a photograph by hand, in a window", "limn edit");
  const auto options = limn::AddEditOptions(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      app.exit(error);
      return ExitCode::Done;
    }
    limn::PrintProblem(error.what());
    return ExitCode::WrongUsage;
  }
  // The command's arguments are not the desktop's.
  static int desktopArgc = 1;
  return limn::EditPhotograph(*options, desktopArgc, argv);
}

} // namespace

int main(int argc, char** argv) {
  TakeSignals();
  return limn::ReportedExit([&] { return Run(argc, argv); });
}
