#include "command_line.h"

#include "channels.h"
#include "describe_options.h"
#include "edit.h"
#include "edit_options.h"
#include "heights.h"
#include "option_value.h"
#include "preview.h"
#include "report.h"
#include "verify.h"

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

void AddPreview(CLI::App& app, Command& command) {
  auto options = std::make_shared<PreviewOptions>();
  CLI::App* preview =
      app.add_subcommand("preview", "Write the picture that the dialog shows of a style");
  preview->footer("The picture is the dialog's frame, 280 × 280 pixels, the photograph in it.");
  preview->add_option("IMAGE", options->image, "The photograph")->required();
  AddValue(*preview, "-o,--output", options->output, "FILE", "The file to write, as for limn apply")
      ->required();
  AddValue(*preview, "-s,--style", options->style, "NAME|FILE",
           "A style file, its JSON form, the JSON itself, or the\nname of a style "
           "(default: Default)");
  AddValue(*preview, "--set", options->settings, "KEY=VALUE", "As for limn apply");
  AddValue(*preview, "--area", options->area, "X,Y,W,H", "Show only this rectangle, in pixels");
  AddValue(*preview, "--channel", options->channels, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(*preview, options->maxPixels);
  preview->add_flag("--unlit", options->isUnlit, "As with the dialog's preview switched off");
  preview->add_flag("-f,--force", options->force, "Replace an existing file");
  preview->callback(
      [options, &command] { command = [options] { return WritePreview(*options); }; });
}

void AddEdit(CLI::App& app, Command& command, char** argv) {
  CLI::App* edit =
      app.add_subcommand("edit", "Set the lights of a photograph by hand, in a window");
  edit->footer("Cancel writes nothing and exits with 1. The styles that the dialog saves can\n"
               "be named to limn apply.");
  // Read again by limn-edit; kept because parsing fills them.
  const auto options = AddEditOptions(*edit);
  edit->callback(
      [argv, options, &command] { command = [argv]() -> ExitCode { BecomeEdit(argv); }; });
}

void AddChannels(CLI::App& app, Command& command) {
  auto image = std::make_shared<std::string>();
  auto added = std::make_shared<std::vector<std::string>>();
  CLI::App* channels =
      app.add_subcommand("channels", "List an image's channels by number and name");
  channels->footer("A style's bumpChannel takes such a number; 0 there means no relief.");
  channels->add_option("IMAGE", *image, "The image")->required();
  AddValue(*channels, "--channel", *added, "IMAGE", "As for limn apply; may be repeated");
  auto maxPixels = std::make_shared<uint64_t>(0);
  AddMaxPixels(*channels, *maxPixels);
  channels->callback([image, added, maxPixels, &command] {
    command = [image, added, maxPixels] { return PrintChannels(*image, *added, *maxPixels); };
  });
}

void AddVerify(CLI::App& app, Command& command) {
  auto options = std::make_shared<VerifyOptions>();
  CLI::App* verify =
      app.add_subcommand("verify", "Check that a lit picture is what its recipe makes");
  verify->footer(
      "The original is lit again by the recipe that limn apply --recipe has written into\n"
      "the lit picture. Pixels have to be equal; where the format loses detail, as JPEG\n"
      "does, they may differ by what it loses. Exits with 3 where they differ.\n\n"
      "  limn apply --recipe -s Campfire photo.tif -o lit.png\n"
      "  limn verify photo.tif lit.png\n\n" +
      std::string(EXIT_CODES));
  verify->add_option("ORIGINAL", options->original, "The photograph that was lit")->required();
  verify->add_option("LIT", options->lit, "What it became, with its recipe")->required();
  AddValue(*verify, "--mask", options->mask, "IMAGE", "The mask that it was lit with");
  AddValue(*verify, "--channel", options->channels, "IMAGE",
           "A channel that was added; may be repeated");
  AddValue(*verify, "--relief", options->heights, "IMAGE", "The image that its heights come from");
  AddMaxPixels(*verify, options->maxPixels);
  verify->callback([options, &command] { command = [options] { return Verify(*options); }; });
}

void AddHeights(CLI::App& app, Command& command) {
  auto options = std::make_shared<HeightsOptions>();
  CLI::App* heights =
      app.add_subcommand("heights", "Write the heights that a photograph is lit with");
  heights->footer("White is high. The picture has 16 bits where its format has, and can be given\n"
                  "to limn apply --relief or --channel, or painted on first.\n\n"
                  "  limn heights photo.jpg -o heights.png --preview look.jpg\n\n" +
                  std::string(EXIT_CODES));
  heights->add_option("IMAGE", options->image, "The photograph")->required();
  AddValue(*heights, "-o,--output", options->output, "FILE", "The file to write, as for limn apply")
      ->required();
  AddValue(*heights, "--preview", options->preview, "FILE",
           "Write them lit from the upper left too, to be looked at");
  heights->add_flag("--as-normals", options->isWritingNormals,
                    "Write a normal map instead, green up: heights that\ndiffer by 4096 of 65535 "
                    "from pixel to pixel rise by 45\ndegrees");
  AddReliefOptions(*heights, options->relief, "auto");
  AddValue(*heights, "--channel", options->channels, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(*heights, options->maxPixels);
  heights->add_flag("-f,--force", options->force, "Replace existing files");
  heights->callback(
      [options, &command] { command = [options] { return WriteHeights(*options); }; });
}

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
