#include "describe_options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <nlohmann/json.hpp>

namespace limn {
namespace {

using Json = nlohmann::ordered_json;

Json Described(const CLI::Option& option) {
  Json names = Json::array();
  for (const std::string& name : option.get_snames())
    names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    names.push_back("--" + name);
  const bool isFlag = option.get_type_size() == 0;
  Json json = {{"text", option.get_description()},
               {"required", option.get_required()},
               {"repeated", !isFlag && option.get_items_expected_max() > 1}};
  if (names.empty()) {
    json["name"] = option.get_name();
  } else {
    json["names"] = names;
    json["value"] = isFlag ? "" : option.get_type_name();
  }
  return json;
}

Json Described(const CLI::App& app) {
  Json options = Json::array();
  Json arguments = Json::array();
  for (const CLI::Option* option : app.get_options())
    if (!option->get_group().empty())
      (option->nonpositional() ? options : arguments).push_back(Described(*option));
  Json commands = Json::array();
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    commands.push_back(Described(*command));
  return {{"name", app.get_name()}, {"text", app.get_description()}, {"footer", app.get_footer()},
          {"options", options},     {"arguments", arguments},        {"commands", commands}};
}

} // namespace

void AddDescription(CLI::App& app, const std::string& version,
                    const std::vector<std::string>& settings) {
  app.add_flag_callback(
         "--describe-options",
         [&app, version, settings] {
           Json json = Described(app);
           json["version"] = version;
           json["settings"] = settings;
           std::cout << json.dump(2) << "\n";
           throw CLI::Success();
         },
         "Print all commands and options as JSON")
      ->trigger_on_parse()
      ->group("");
}

} // namespace limn
