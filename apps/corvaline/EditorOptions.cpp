#include "EditorOptions.h"

#include "describe_options.h"
#include "failure.h"
#include "option_value.h"

#include <iostream>

namespace editor {

std::optional<int> ReadEditorOptions(int argc, char** argv, EditorOptions& options) {
  CLI::App app("Opens a photograph to light it.", "corvaline");
  app.get_formatter()->column_width(24);
  app.set_version_flag("--version", "corvaline " LIMN_VERSION);
  app.add_option("IMAGE", options.images, "The photographs to open, each in a window of its own");
  app.add_flag("--light", options.dialog, "Open the lighting dialog on it at once");
  limn::AddValue(app, "--style", options.style, "NAME|FILE",
                 "Light it with this style: a style file, its JSON form,\n"
                 "or the name of a style; without IMAGE, ask for one");
  limn::AddDescription(app, LIMN_VERSION, {});
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0)
      return app.exit(error);
    std::cerr << "corvaline: " << error.what() << " (see corvaline --help)\n";
    return static_cast<int>(limn::ExitCode::WrongUsage);
  }
  return std::nullopt;
}

} // namespace editor
