#include "command_line.h"

#include "library_list.h"
#include "option_value.h"
#include "style_commands.h"

#include <memory>
#include <vector>

namespace limn {
namespace {

void AddStyleShow(CLI::App& style, Command& command) {
  auto name = std::make_shared<std::string>();
  auto form = std::make_shared<StyleForm>(StyleForm::Readable);
  CLI::App* show = style.add_subcommand("show", "Print a style's settings");
  show->add_option("STYLE", *name, "A style file, its JSON form, or a style's name")->required();
  show->add_flag_callback(
      "--json", [form] { *form = StyleForm::Json; },
      "In the JSON form, which limn style pack and limn apply\ntake");
  show->callback(
      [name, form, &command] { command = [name, form] { return ShowStyle(*name, *form); }; });
}

void AddStylePack(CLI::App& style, Command& command) {
  auto input = std::make_shared<std::string>();
  auto output = std::make_shared<std::string>();
  auto force = std::make_shared<bool>(false);
  CLI::App* pack = style.add_subcommand("pack", "Make a style file from its JSON form");
  pack->add_option("FILE", *input, "The JSON form, as limn style show --json prints it")
      ->required();
  AddValue(*pack, "-o,--output", *output, "STYLE", "The style file to write")->required();
  pack->add_flag("-f,--force", *force, "Replace an existing file");
  pack->callback([input, output, force, &command] {
    command = [input, output, force] {
      return PackStyle(*input, *output, *force ? Overwrite::Yes : Overwrite::No);
    };
  });
}

void AddStyleCheck(CLI::App& style, Command& command) {
  auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* check = style.add_subcommand("check", "Say of each style whether it is well");
  check->add_option("STYLE", *names, "Style files, their JSON form, or names of styles")
      ->required();
  check->callback([names, &command] { command = [names] { return CheckStyles(*names); }; });
}

} // namespace

void AddStyles(CLI::App& app, Command& command) {
  auto form = std::make_shared<ListForm>(ListForm::Names);
  CLI::App* styles = app.add_subcommand("styles", "List the styles of the library by name");
  styles->footer("The library is the folder of styles that the dialog saves to and reads.");
  styles->add_flag_callback(
      "--json", [form] { *form = ListForm::Json; },
      "Print a line of JSON for each style: name, origin\n(bundled or user), number of lights");
  styles->callback([form, &command] { command = [form] { return ListStyles(*form); }; });
}

void AddStyle(CLI::App& app, Command& command) {
  CLI::App* style = app.add_subcommand("style", "Show, pack and check styles");
  style->require_subcommand(1);
  style->footer("limn style COMMAND --help tells more about each.");
  AddStyleShow(*style, command);
  AddStylePack(*style, command);
  AddStyleCheck(*style, command);
}

} // namespace limn
