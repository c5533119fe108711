// limn: lights photographs from the command line.
#include "apply.h"
#include "channels.h"
#include "report.h"
#include "style_commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <memory>
#include <new>

namespace {

using limn::ExitCode;

// What the command line asked for; runs after parsing.
using Command = std::function<ExitCode()>;

constexpr const char* EXIT_CODES =
    "Exit codes: 0 done, 1 cancelled, 2 wrong usage, 3 bad input file, 4 could not write,\n"
    "5 out of memory, 6 refused by the plug-in. A batch ends with the highest of its images.";

constexpr const char* APPLY_NOTES =
    "Settings for --set: exposure, gloss, material, ambientBrightness, ambientColor.0 to .2,\n"
    "bumpChannel, bumpAmplitude, whiteIsHigh, and for each light from 0: light.0.type (omni,\n"
    "directional, spot), .on, .intensity, .spread, .color.0 to .2, .center.0 and .1, .handle1.0 "
    "…,\n"
    "and .radius. An array can be set whole: --set light.0.color=65535,50000,30000\n"
    "\n"
    "Examples:\n"
    "  limn apply photo.jpg -o lit.jpg\n"
    "  limn apply --style Dusk --set exposure=150 photo.jpg -o 'lit.jpg[Q=92]'\n"
    "  limn apply --channel heights.png --set bumpChannel=4 photo.jpg -o relief.png\n"
    "  limn apply -r holiday -o lit/ --jobs 4 --json\n";

void AddApply(CLI::App& app, Command& command) {
  auto options = std::make_shared<limn::ApplyOptions>();
  CLI::App* apply = app.add_subcommand("apply", "Light photographs and write the results");
  apply->footer(std::string(APPLY_NOTES) + "\n" + EXIT_CODES);
  apply->add_option("IMAGE", options->images, "Photographs to light, or folders with -r")
      ->required();
  apply
      ->add_option("-o,--output", options->output,
                   "The file to write, its format by its extension, with libvips' save options in\n"
                   "brackets (lit.jpg[Q=92]); or a folder, ending in a slash, for several images")
      ->required()
      ->type_name("FILE|FOLDER/");
  apply->add_flag("-r,--recursive", options->isRecursive,
                  "Light all images in the given folders and keep their tree");
  apply
      ->add_option("-s,--style", options->style,
                   "A style file, its JSON form, or a style's name (default: the default light)")
      ->type_name("NAME|FILE");
  apply->add_option("--set", options->settings, "Change one setting of the style; may be repeated")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  apply->add_option("--area", options->area, "Light only this rectangle, in pixels")
      ->type_name("X,Y,W,H");
  apply
      ->add_option(
          "--mask", options->mask,
          "A grey image of the same size: light fully where it is white, not at all where\n"
          "it is black")
      ->type_name("IMAGE");
  apply
      ->add_option("--channel", options->channels,
                   "A grey image of the same size, as one more channel of the photograph that a\n"
                   "style can take its relief from; not written to the output; may be repeated")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  apply->add_option("-j,--jobs", options->jobs, "Images to work on at a time (default: processors)")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  apply->add_flag("-f,--force", options->force, "Replace existing outputs, and inputs if asked to");
  apply->add_flag("-q,--quiet", options->quiet, "Print nothing but failures");
  apply->add_flag("--json", options->json,
                  "Print a line of JSON for each image: input, output, size, seconds");
  apply->callback([options, &command] { command = [options] { return limn::Apply(*options); }; });
}

void AddChannels(CLI::App& app, Command& command) {
  auto image = std::make_shared<std::string>();
  auto added = std::make_shared<std::vector<std::string>>();
  CLI::App* channels =
      app.add_subcommand("channels", "List an image's channels by number and name");
  channels->footer("The number is what a style's bumpChannel takes; 0 there means no relief.");
  channels->add_option("IMAGE", *image, "The image")->required();
  channels->add_option("--channel", *added, "As for limn apply; may be repeated")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  channels->callback([image, added, &command] {
    command = [image, added] { return limn::PrintChannels(*image, *added); };
  });
}

void AddStyleShow(CLI::App& style, Command& command) {
  auto name = std::make_shared<std::string>();
  auto form = std::make_shared<limn::StyleForm>(limn::StyleForm::Readable);
  CLI::App* show = style.add_subcommand("show", "Print a style's settings");
  show->add_option("STYLE", *name, "A style file, its JSON form, or a style's name")->required();
  show->add_flag_callback(
      "--json", [form] { *form = limn::StyleForm::Json; },
      "In the JSON form, which limn style pack and limn apply take");
  show->callback(
      [name, form, &command] { command = [name, form] { return limn::ShowStyle(*name, *form); }; });
}

void AddStylePack(CLI::App& style, Command& command) {
  auto input = std::make_shared<std::string>();
  auto output = std::make_shared<std::string>();
  auto force = std::make_shared<bool>(false);
  CLI::App* pack = style.add_subcommand("pack", "Make a style file from its JSON form");
  pack->add_option("FILE", *input, "The JSON form, as limn style show --json prints it")
      ->required();
  pack->add_option("-o,--output", *output, "The style file to write")
      ->required()
      ->type_name("STYLE");
  pack->add_flag("-f,--force", *force, "Replace an existing file");
  pack->callback([input, output, force, &command] {
    command = [input, output, force] {
      return limn::PackStyle(*input, *output, *force ? limn::Overwrite::Yes : limn::Overwrite::No);
    };
  });
}

void AddStyleCheck(CLI::App& style, Command& command) {
  auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* check = style.add_subcommand("check", "Say of each style whether it is well");
  check->add_option("STYLE", *names, "Style files, their JSON form, or names of styles")
      ->required();
  check->callback([names, &command] { command = [names] { return limn::CheckStyles(*names); }; });
}

void AddStyle(CLI::App& app, Command& command) {
  CLI::App* style = app.add_subcommand("style", "Show, pack and check styles");
  style->require_subcommand(1);
  AddStyleShow(*style, command);
  AddStylePack(*style, command);
  AddStyleCheck(*style, command);
}

// The command line's own mistakes in one line; help and version as they are.
ExitCode Answer(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    app.exit(error);
    return limn::FlushedOutput(ExitCode::Done);
  }
  std::string sentence = error.what();
  for (char& letter : sentence)
    letter = letter == '\n' ? ' ' : letter;
  limn::PrintProblem(sentence + " (see limn --help)");
  return ExitCode::WrongUsage;
}

ExitCode Run(int argc, char** argv) {
  CLI::App app(
      "Limn relights photographs: up to sixteen coloured lights, and relief from any channel.",
      "limn");
  app.footer("limn COMMAND --help tells more about each.\n\n" + std::string(EXIT_CODES));
  app.set_version_flag("--version", "limn " LIMN_VERSION);
  app.require_subcommand(1);
  Command command;
  AddApply(app, command);
  AddChannels(app, command);
  AddStyle(app, command);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return Answer(app, error);
  }
  return limn::FlushedOutput(command());
}

} // namespace

int main(int argc, char** argv) {
  ExitCode code = ExitCode::Refused;
  try {
    code = Run(argc, argv);
  } catch (const limn::Failure& failure) {
    limn::PrintProblem(failure.what());
    code = failure.Code();
  } catch (const std::bad_alloc&) {
    limn::PrintProblem("not enough memory");
    code = ExitCode::NoMemory;
  } catch (const std::exception& error) {
    limn::PrintProblem(error.what());
  }
  return static_cast<int>(code);
}
