#include "relief_options.h"

#include "failure.h"
#include "lighting.h"
#include "normal_map.h"
#include "option_value.h"

#include "LM_height_words.h"

namespace limn {
namespace {

LM_height_source Named(const std::string& name, const std::vector<std::string>& channels) {
  LM_height_source source;
  if (LM_SetHeightSource(source, name))
    return source;
  source.kind = LM_height_kind::File;
  source.file = name;
  for (const std::string& channel : channels)
    if (ChannelName(channel) == name)
      source.file = channel;
  return source;
}

} // namespace

void AddReliefOptions(CLI::App& command, ReliefOptions& options, const std::string& otherwise) {
  CLI::Option* const source = AddValue(command, "--relief", options.source, "SOURCE",
                                       "Where heights come from: auto (luminance, made ready,\n"
                                       "for styles that have relief), luminance, red, green,\n"
                                       "blue, a channel's number or the name of an added one, a\n"
                                       "grey image of the same shape, or none\n"
                                       "(default: " +
                                           otherwise + ")");
  CLI::Option* const normals =
      AddValue(command, "--normals", options.normals, "IMAGE",
               "Take heights from a normal map of the same shape, of 8\nor 16 bits")
          ->excludes(source);
  AddValue(command, "--normals-y", options.normalsY, "up|down",
           "What its green stands for (default: what fits better,\nand says so)")
      ->check(CLI::IsMember({"up", "down"}))
      ->needs(normals);
  AddValue(command, "--relief-smoothing", options.smoothing, "N",
           "Take differences below N, of 255, for grain and even\n"
           "them out between edges (default: 0; auto: " +
               std::to_string(LM_USUAL_SMOOTHING) + ")")
      ->check(CLI::Range(0, LM_MOST_SMOOTHING));
  AddValue(command, "--relief-detail", options.detail, "N",
           "How large what stands out is, in thousandths of the\n"
           "longer side; broader shading is flattened, finer is\n"
           "smoothed (default: 0, neither; auto or fitted: " +
               std::to_string(LM_USUAL_DETAIL) + ")")
      ->check(CLI::Range(0, LM_MOST_DETAIL));
  command.add_flag("--relief-fit", options.fit,
                   "As steep as on a picture of " + std::to_string(LM_HEIGHTS_SIDE) +
                       " pixels, at any size;\nauto does so");
  command.add_flag("--relief-invert", options.invert,
                   "What is dark is high, as in depth maps where near is\ndark");
}

LM_height_source ReliefOf(const ReliefOptions& options, const NamedStyle& named,
                          const std::vector<std::string>& channels) {
  LM_height_source source = options.source.empty() ? named.relief : Named(options.source, channels);
  if (!options.normals.empty()) {
    source = {};
    source.kind = LM_height_kind::File;
    source.file = options.normals;
  }
  if (source.kind == LM_height_kind::Style &&
      (options.smoothing != LM_USUAL || options.detail != LM_USUAL || options.fit ||
       options.invert))
    throw Failure(ExitCode::WrongUsage,
                  "--relief-smoothing, -detail, -fit and -invert go with --relief");
  if (options.smoothing != LM_USUAL)
    source.smoothing = options.smoothing;
  if (options.detail != LM_USUAL)
    source.detail = options.detail;
  source.fit = source.fit || options.fit;
  source.invert = source.invert != options.invert;
  return LM_ResolvedSource(source, named.style.bumpChannel != 0);
}

GreyImage ReadHeights(const ReliefOptions& options, const LM_height_source& source,
                      std::vector<std::string>& notices) {
  if (options.normals.empty())
    return ReadGreyImage(source.file);
  std::optional<LM_normals_y> greenIs;
  if (!options.normalsY.empty())
    greenIs = options.normalsY == "up" ? LM_normals_y::Up : LM_normals_y::Down;
  return ReadNormalMap(source.file, greenIs, notices);
}

} // namespace limn
