// limn edit: hands over to the program that has the dialog.
#include "command_line.h"

#include "edit_options.h"
#include "lighting.h"
#include "posix_file.h"

#include <cerrno>
#include <string>
#include <unistd.h>

namespace limn {
namespace {

// Becomes limn-edit, which lies beside this program, with the arguments after the command's name
// ("edit", argv[1]). Returns only by throwing Failure(Refused).
[[noreturn]] void BecomeEdit(char** argv) {
  const std::string program = (ProgramFolder() / "limn-edit").string();
  execv(program.c_str(), argv + 1);
  const int reason = errno;
  if (reason == ENOENT)
    throw Failure(ExitCode::Refused, "the dialog is not installed: there is no " + program);
  throw Failure(ExitCode::Refused, program + ": " + SystemReason(reason));
}

} // namespace

void AddEdit(CLI::App& app, Command& command, char** argv) {
  CLI::App* const edit =
      app.add_subcommand("edit", "Set the lights of a photograph by hand, in a window");
  edit->footer("Cancel writes nothing and exits with 1. The styles that the dialog saves can\n"
               "be named to limn apply.");
  // Read again by limn-edit; kept because parsing fills them.
  const auto options = AddEditOptions(*edit);
  edit->callback(
      [argv, options, &command] { command = [argv]() -> ExitCode { BecomeEdit(argv); }; });
}

} // namespace limn
