#include "command_line.h"

#include "describe_options.h"

#include "LM_kernels.h"
#include "LM_style_fields.h"

#include <memory>
#include <vector>

namespace limn {

const char* const EXIT_CODES =
    "Exit codes: 0 done, 1 cancelled, 2 wrong usage, 3 bad input file, 4 could not\n"
    "write, 5 out of memory, 6 refused by the plug-in. A batch ends with the\n"
    "highest of its images.";

namespace {

// The vector code that this processor gets, or that there is none for it.
std::string Version() {
  const LM_kernels* const kernels = LM_BestKernels();
  return std::string("limn " LIMN_VERSION " (vectors: ") +
         (kernels != nullptr ? kernels->name : "none") + ")";
}

} // namespace

std::unique_ptr<CLI::App> MakeCommandLine(Command& command, char** argv) {
  auto app = std::make_unique<CLI::App>(
      "Limn relights photographs, with up to sixteen coloured lights and with relief\n"
      "from any channel.",
      "limn");
  app->footer("limn COMMAND --help tells more about each.\n\n" + std::string(EXIT_CODES));
  app->set_version_flag("--version", Version);
  app->require_subcommand(1);
  app->get_formatter()->column_width(24);
  AddApply(*app, command);
  AddEdit(*app, command, argv);
  AddPreview(*app, command);
  AddSheet(*app, command);
  AddChannels(*app, command);
  AddHeights(*app, command);
  AddVerify(*app, command);
  AddStyles(*app, command);
  AddStyle(*app, command);
  std::vector<std::string> settings;
  for (const LM_style_key& key : LM_StyleKeys())
    for (const std::string& word : {key.name, key.word})
      if (!word.empty())
        settings.push_back(word);
  AddDescription(*app, LIMN_VERSION, settings);
  return app;
}

} // namespace limn
