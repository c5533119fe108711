// limn: lights photographs from the command line.
#include "apply.h"
#include "channels.h"
#include "edit.h"
#include "edit_options.h"
#include "library_list.h"
#include "preview.h"
#include "report.h"
#include "style_commands.h"

#include "LM_style_fields.h"

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
    "Exit codes: 0 done, 1 cancelled, 2 wrong usage, 3 bad input file, 4 could not\n"
    "write, 5 out of memory, 6 refused by the plug-in. A batch ends with the\n"
    "highest of its images.";

// Folds words into lines that fit a narrow terminal.
std::string Folded(const std::vector<std::string>& words) {
  constexpr size_t LONGEST_LINE = 76;
  std::string text = "  ";
  size_t length = 0;
  for (const std::string& word : words) {
    const bool isNewLine = length + word.size() > LONGEST_LINE;
    if (length > 0)
      text += isNewLine ? ",\n  " : ", ";
    text += word;
    length = (isNewLine ? 0 : length) + word.size() + 2;
  }
  return text;
}

std::string ApplyNotes() {
  return "Settings for --set, N being a light's number from 0:\n" + Folded(LM_StyleKeys()) +
         "\nLight types are omni, directional and spot; an array can be set whole:\n"
         "  --set light.0.color=65535,50000,30000\n"
         "\n"
         "Examples:\n"
         "  limn apply photo.jpg -o lit.jpg\n"
         "  limn apply -s 'Evening Lamp' --set exposure=150 photo.jpg -o 'lit.jpg[Q=92]'\n"
         "  limn apply --channel heights.png --set bumpChannel=4 photo.jpg -o lit.png\n"
         "  limn apply -r holiday -o lit/ --jobs 4 --json\n\n";
}

void AddApply(CLI::App& app, Command& command) {
  auto options = std::make_shared<limn::ApplyOptions>();
  CLI::App* apply = app.add_subcommand("apply", "Light photographs and write the results");
  apply->footer(ApplyNotes() + EXIT_CODES);
  apply->add_option("IMAGE", options->images, "Photographs to light, or folders with -r")
      ->required();
  apply
      ->add_option("-o,--output", options->output,
                   "The file to write, in the format of its extension, with\n"
                   "libvips' save options in brackets (lit.jpg[Q=92]); or a\n"
                   "folder, ending in a slash, for several images")
      ->required()
      ->type_name("FILE|FOLDER/");
  apply->add_flag("-r,--recursive", options->isRecursive,
                  "Light all images in the folders and keep their tree");
  apply
      ->add_option("-s,--style", options->style,
                   "A style file, its JSON form, or the name of a style\n(default: Default)")
      ->type_name("NAME|FILE");
  apply->add_option("--set", options->settings, "Change one setting of the style; may be repeated")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  apply->add_option("--area", options->area, "Light only this rectangle, in pixels")
      ->type_name("X,Y,W,H");
  apply
      ->add_option("--mask", options->mask,
                   "A grey image of the same size: light fully where it is\n"
                   "white, not at all where it is black")
      ->type_name("IMAGE");
  apply
      ->add_option("--channel", options->channels,
                   "A grey image of the same size, as one more channel that\n"
                   "a style can take its relief from; not written to the\n"
                   "output; may be repeated")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  apply
      ->add_option("-j,--jobs", options->jobs, "Images to work on at a time\n(default: processors)")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  apply->add_flag("--through-plugin", options->isThroughPlugin,
                  "Have the plug-in light the whole image in memory, as the\neditor does; the "
                  "result is the same");
  apply->add_flag("-f,--force", options->force,
                  "Replace existing files, the inputs too if so named");
  apply->add_flag("-q,--quiet", options->quiet, "Print nothing but failures");
  apply->add_flag("--json", options->json,
                  "Print a line of JSON for each image: input, output,\nsize, seconds");
  apply->callback([options, &command] { command = [options] { return limn::Apply(*options); }; });
}

void AddPreview(CLI::App& app, Command& command) {
  auto options = std::make_shared<limn::PreviewOptions>();
  CLI::App* preview =
      app.add_subcommand("preview", "Write the picture that the dialog shows of a style");
  preview->footer("The picture is the dialog's frame, 280 × 280 pixels, the photograph in it.");
  preview->add_option("IMAGE", options->image, "The photograph")->required();
  preview->add_option("-o,--output", options->output, "The file to write, as for limn apply")
      ->required()
      ->type_name("FILE");
  preview
      ->add_option("-s,--style", options->style,
                   "A style file, its JSON form, or the name of a style\n(default: Default)")
      ->type_name("NAME|FILE");
  preview->add_option("--set", options->settings, "As for limn apply")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);
  preview->add_option("--area", options->area, "Show only this rectangle, in pixels")
      ->type_name("X,Y,W,H");
  preview->add_option("--channel", options->channels, "As for limn apply; may be repeated")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  preview->add_flag("--unlit", options->isUnlit, "As with the dialog's preview switched off");
  preview->add_flag("-f,--force", options->force, "Replace an existing file");
  preview->callback(
      [options, &command] { command = [options] { return limn::WritePreview(*options); }; });
}

void AddEdit(CLI::App& app, Command& command, char** argv) {
  CLI::App* edit =
      app.add_subcommand("edit", "Set the lights of a photograph by hand, in a window");
  edit->footer("Cancel writes nothing and exits with 1. The styles that the dialog saves can\n"
               "be named to limn apply.");
  limn::AddEditOptions(*edit);
  edit->callback([argv, &command] { command = [argv]() -> ExitCode { limn::BecomeEdit(argv); }; });
}

void AddChannels(CLI::App& app, Command& command) {
  auto image = std::make_shared<std::string>();
  auto added = std::make_shared<std::vector<std::string>>();
  CLI::App* channels =
      app.add_subcommand("channels", "List an image's channels by number and name");
  channels->footer("A style's bumpChannel takes such a number; 0 there means no relief.");
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
      "In the JSON form, which limn style pack and limn apply\ntake");
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

void AddStyles(CLI::App& app, Command& command) {
  auto form = std::make_shared<limn::ListForm>(limn::ListForm::Names);
  CLI::App* styles = app.add_subcommand("styles", "List the styles of the library by name");
  styles->footer("The library is the folder of styles that the dialog saves to and reads.");
  styles->add_flag_callback(
      "--json", [form] { *form = limn::ListForm::Json; },
      "Print a line of JSON for each style: name, origin\n(bundled or user), number of lights");
  styles->callback([form, &command] { command = [form] { return limn::ListStyles(*form); }; });
}

void AddStyle(CLI::App& app, Command& command) {
  CLI::App* style = app.add_subcommand("style", "Show, pack and check styles");
  style->require_subcommand(1);
  style->footer("limn style COMMAND --help tells more about each.");
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
  CLI::App app("Limn relights photographs, with up to sixteen coloured lights and with relief\n"
               "from any channel.",
               "limn");
  app.footer("limn COMMAND --help tells more about each.\n\n" + std::string(EXIT_CODES));
  app.set_version_flag("--version", "limn " LIMN_VERSION);
  app.require_subcommand(1);
  app.get_formatter()->column_width(24);
  Command command;
  AddApply(app, command);
  AddEdit(app, command, argv);
  AddPreview(app, command);
  AddChannels(app, command);
  AddStyles(app, command);
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
