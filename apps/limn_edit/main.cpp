// limn-edit: what `limn edit` becomes.
#include "edit_photograph.h"

#include "report.h"
#include "termination.h"

#include <CLI/CLI.hpp>

namespace {

using limn::ExitCode;

ExitCode Run(int& argc, char** argv) {
  CLI::App app("Set the lights of a photograph by hand, in a window", "limn edit");
  const auto options = limn::AddEditOptions(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      app.exit(error);
      return limn::FlushedOutput(ExitCode::Done);
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
  limn::EndCleanlyOnSignals();
  return limn::ReportedExit([&] { return Run(argc, argv); });
}
