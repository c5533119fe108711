#include "style_commands.h"

#include "atomic_file.h"
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

} // namespace

ExitCode ShowStyle(const std::string& name, StyleForm form) {
  const NamedStyle named = FindStyle(name);
  if (!named.warning.empty())
    PrintProblem(name + ": " + named.warning);
  if (form == StyleForm::Json)
    PrintText(LM_StyleToJson(named.style, named.relief));
  else
    PrintStyle(named.style);
  return ExitCode::Done;
}

ExitCode PackStyle(const std::string& jsonFile, const std::string& styleFile, Overwrite overwrite) {
  const NamedStyle named = ReadStyleFile(jsonFile);
  if (!named.warning.empty())
    PrintProblem(jsonFile + ": " + named.warning);
  if (named.relief != LM_height_source())
    PrintProblem(jsonFile + ": its relief object is left out, for which a style file has no room");
  if (LM_HasFractions(named.style))
    PrintProblem(jsonFile + ": its lengths are rounded, as a style file has whole ones alone");
  const bool isReplacing = overwrite == Overwrite::Yes;
  const std::string target = ResolveTarget(styleFile);
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(named.style, bytes);
  AtomicFile file(target, isReplacing ? Existing::Replace : Existing::Keep);
  file.Write(bytes, size);
  file.Commit();
  return ExitCode::Done;
}

ExitCode CheckStyles(const std::vector<std::string>& names) {
  ExitCode worst = ExitCode::Done;
  for (const std::string& name : names) {
    try {
      PrintLine(Printable(std::string(name).append(": ").append(Verdict(FindStyle(name)))));
    } catch (const Failure& failure) {
      PrintProblem(failure.what());
      worst = std::max(worst, failure.Code());
    }
  }
  return worst;
}

} // namespace limn
