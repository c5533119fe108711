#include "apply_command.h"

#include "LM_style_fields.h"
#include "LM_style_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace limn {
namespace {

using Json = nlohmann::ordered_json;

void DropDefaults(Json& settings, const Json& defaults) {
  for (const auto& [key, value] : defaults.items())
    if (key != "lights" && settings.contains(key) && settings[key] == value)
      settings.erase(key);
}

// One word for a shell, quoted if need be.
std::string ShellWord(const std::string& word) {
  constexpr const char* PLAIN = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                "_-./,:=+@%";
  if (!word.empty() && word.find_first_not_of(PLAIN) == std::string::npos)
    return word;
  std::string quoted = "'";
  for (const char letter : word)
    quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return quoted + "'";
}

// A file name that is not taken for an option.
std::string FileWord(const std::string& name) {
  return ShellWord(name.starts_with('-') ? "./" + name : name);
}

// A file is the one source that the style's JSON cannot name.
std::string FileRelief(const LM_height_source& relief) {
  if (relief.kind != LM_height_kind::File)
    return "";
  std::string words = " --relief " + FileWord(relief.file);
  if (relief.smoothing != LM_USUAL)
    words += " --relief-smoothing " + std::to_string(relief.smoothing);
  if (relief.detail != LM_USUAL)
    words += " --relief-detail " + std::to_string(relief.detail);
  words += relief.fit ? " --relief-fit" : "";
  return words + (relief.invert ? " --relief-invert" : "");
}

// A style as JSON on one line, settings left out that a new style or light has anyway.
std::string ShortJson(const LM_style& style, const LM_height_source& relief) {
  LM_style least = LM_NewStyle();
  least.lights[0] = LM_NewStyleLight();
  least.lightsRead = least.numLights = 1;
  const Json defaults = Json::parse(LM_StyleToJson(least));
  Json settings = Json::parse(LM_StyleToJson(style, relief));
  DropDefaults(settings, defaults);
  for (Json& light : settings["lights"])
    DropDefaults(light, defaults["lights"][0]);
  return settings.dump();
}

} // namespace

std::string CommandLine(const ApplyCommand& command) {
  std::string line = "limn apply " + FileWord(command.image) + " -o " + FileWord(command.output);
  if (command.force)
    line += " --force";
  if (!command.area.empty())
    line += " --area " + ShellWord(command.area);
  if (!command.mask.empty())
    line += " --mask " + FileWord(command.mask);
  for (const std::string& channel : command.channels)
    line += " --channel " + FileWord(channel);
  if (command.maxPixels != 0)
    line += " --max-pixels " + std::to_string(command.maxPixels);
  return line + FileRelief(command.relief) + " --style " +
         ShellWord(ShortJson(command.style, command.relief));
}

bool HasControls(const std::string& line) {
  return std::any_of(line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == 127; });
}

} // namespace limn
