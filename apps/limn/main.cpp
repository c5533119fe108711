// limn: lights photographs from the command line.
#include "bracketed_words.h"
#include "command_line.h"
#include "report.h"
#include "termination.h"
#include "usage_answer.h"

namespace {

using limn::ExitCode;

// The command line's own mistakes in one line; help and version as they are.
ExitCode Answer(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    app.exit(error);
    return limn::FlushedOutput(ExitCode::Done);
  }
  limn::PrintProblem(limn::UsageAnswer(app, error) + " (see limn --help)");
  return ExitCode::WrongUsage;
}

ExitCode Run(int argc, char** argv) {
  limn::Command command;
  const auto app = limn::MakeCommandLine(command, argv);
  try {
    limn::ParseWhole(*app, argc, argv);
  } catch (const CLI::ParseError& error) {
    return Answer(*app, error);
  }
  return limn::FlushedOutput(command());
}

} // namespace

int main(int argc, char** argv) {
  limn::EndCleanlyOnSignals();
  return limn::ReportedExit([&] { return Run(argc, argv); });
}
