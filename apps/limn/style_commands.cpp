// limn style: shows, packs and checks styles.
#include "command_line.h"

#include "atomic_file.h"
#include "option_value.h"
#include "output_target.h"
#include "report.h"
#include "style_source.h"

#include "LM_light_kinds.h"
#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LM_style_json.h"
#include "LM_style_lengths.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace limn {
namespace {

std::string Line(const char* name, const std::string& value) {
  char line[120];
  std::snprintf(line, sizeof line, "%-15s %s", name, value.c_str());
  return line;
}

std::string Color(const LM_color48& color) {
  return std::to_string(color.component[0]) + ", " + std::to_string(color.component[1]) + ", " +
         std::to_string(color.component[2]);
}

std::string Length(float length) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, length, std::chars_format::fixed).ptr};
}

std::string Point(const LM_vector2f& point) {
  return "(" + Length(point.x) + ", " + Length(point.y) + ")";
}

std::string Relief(const LM_style& style) {
  if (style.bumpChannel <= 0)
    return "none";
  return "channel " + std::to_string(style.bumpChannel) + ", amplitude " +
         std::to_string(style.bumpAmplitude) +
         (style.whiteIsHigh != 0 ? ", white is high" : ", black is high");
}

void PrintLight(const LM_style& style, int index) {
  const LM_style_light& light = style.lights[index];
  std::string title = "light " + std::to_string(index);
  std::string kind(LM_LightKindOfCode(light.type).word);
  if (light.on != 1)
    kind += ", off";
  if (index == style.curLight)
    kind += ", selected";
  PrintLine(Line(title.c_str(), kind));
  PrintLine(Line("  colour", Color(light.color)));
  PrintLine(Line("  intensity", std::to_string(light.intensity)));
  if (light.type != LM_STYLE_OMNI && light.type != LM_STYLE_DIRECTIONAL)
    PrintLine(Line("  spread", std::to_string(light.spread)));
  PrintLine(Line("  centre", Point(light.center)));
  if (light.type == LM_STYLE_OMNI)
    PrintLine(Line("  radius", Length(light.radius)));
  else
    PrintLine(Line("  handles", Point(light.handle1) + " " + Point(light.handle2)));
}

void PrintStyle(const LM_style& style) {
  PrintLine(Line("exposure", std::to_string(style.exposure)));
  PrintLine(Line("gloss", std::to_string(style.gloss)));
  PrintLine(Line("material", std::to_string(style.material)));
  PrintLine(Line("ambience", std::to_string(style.ambientBrightness)));
  PrintLine(Line("ambient colour", Color(style.ambientColor)));
  PrintLine(Line("relief", Relief(style)));
  PrintLine(Line("world unit", std::to_string(style.worldUnit) + " preview pixels"));
  for (int index = 0; index < style.lightsRead; ++index)
    PrintLight(style, index);
}

std::string Verdict(const NamedStyle& named) {
  if (!named.warning.empty())
    return named.warning;
  return "good, " + LM_CountedLights(named.style.lightsRead);
}

struct ShowOptions {
  std::string style;
  bool json = false;
};

// Prints the style's settings. Throws Failure.
ExitCode ShowStyle(const ShowOptions& options) {
  const NamedStyle named = FindStyle(options.style);
  if (!named.warning.empty())
    PrintProblem(options.style + ": " + named.warning);
  if (options.json)
    PrintText(LM_StyleToJson(named.style, named.relief));
  else
    PrintStyle(named.style);
  return ExitCode::Done;
}

struct PackOptions {
  std::string input; // the JSON form
  std::string output;
  bool force = false;
};

// Writes the style file that the JSON file describes. Throws Failure.
ExitCode PackStyle(const PackOptions& options) {
  const std::string& input = options.input;
  const NamedStyle named = ReadStyleFile(input);
  if (!named.warning.empty())
    PrintProblem(input + ": " + named.warning);
  if (named.relief != LM_height_source())
    PrintProblem(input + ": its relief object is left out, for which a style file has no room");
  if (LM_HasFractions(named.style))
    PrintProblem(input + ": its lengths are rounded, as a style file has whole ones alone");
  const std::string target = ResolveTarget(options.output);
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(named.style, bytes);
  AtomicFile file(target, options.force ? Existing::Replace : Existing::Keep);
  file.Write(bytes, size);
  file.Commit();
  return ExitCode::Done;
}

struct CheckOptions {
  std::vector<std::string> styles;
};

// Reads each style and says whether it is well. The highest code of all.
ExitCode CheckStyles(const CheckOptions& options) {
  ExitCode worst = ExitCode::Done;
  for (const std::string& name : options.styles) {
    try {
      PrintLine(Printable(std::string(name).append(": ").append(Verdict(FindStyle(name)))));
    } catch (const Failure& failure) {
      PrintProblem(failure.what());
      worst = std::max(worst, failure.Code());
    }
  }
  return worst;
}

void AddStyleShow(CLI::App& style, Command& command) {
  auto [show, options] = AddCommand(style, command, "show", "Print a style's settings", ShowStyle);
  show.add_option("STYLE", options.style, "A style file, its JSON form, or a style's name")
      ->required();
  show.add_flag("--json", options.json,
                "In the JSON form, which limn style pack and limn apply\ntake");
}

void AddStylePack(CLI::App& style, Command& command) {
  auto [pack, options] =
      AddCommand(style, command, "pack", "Make a style file from its JSON form", PackStyle);
  pack.add_option("FILE", options.input, "The JSON form, as limn style show --json prints it")
      ->required();
  AddValue(pack, "-o,--output", options.output, "STYLE", "The style file to write")->required();
  pack.add_flag("-f,--force", options.force, "Replace an existing file");
}

void AddStyleCheck(CLI::App& style, Command& command) {
  auto [check, options] =
      AddCommand(style, command, "check", "Say of each style whether it is well", CheckStyles);
  check.add_option("STYLE", options.styles, "Style files, their JSON form, or names of styles")
      ->required();
}

} // namespace

void AddStyle(CLI::App& app, Command& command) {
  CLI::App* const style = app.add_subcommand("style", "Show, pack and check styles");
  style->require_subcommand(1);
  style->footer("limn style COMMAND --help tells more about each.");
  AddStyleShow(*style, command);
  AddStylePack(*style, command);
  AddStyleCheck(*style, command);
}

} // namespace limn
