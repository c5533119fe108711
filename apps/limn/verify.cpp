// limn verify: whether a lit picture is what its recipe makes of the original.
#include "command_line.h"

#include "apply_one.h"
#include "image_library.h"
#include "image_source.h"
#include "lit_photograph.h"
#include "option_value.h"
#include "recipe.h"
#include "report.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>

namespace limn {
namespace {

using vips::VImage;

struct VerifyOptions {
  std::string original, lit;
  std::string mask, heights; // files that the recipe names; or empty
  std::vector<std::string> channels;
  uint64_t maxPixels = 0; // 0: the usual limits
};

// More than a JPEG loses of a photograph, and less than another light makes.
constexpr double MOST_LOSS = 8;

Recipe RecipeFound(const std::string& file, const VImage& image) {
  const std::optional<std::string> json = RecipeIn(image);
  if (!json)
    throw Failure(ExitCode::BadInput, file + ": holds no recipe; limn apply --recipe writes one");
  Recipe recipe;
  std::string why;
  if (!RecipeFromJson(*json, recipe, why))
    throw Failure(ExitCode::BadInput, file + ": its recipe: " + why);
  return recipe;
}

// Throws Failure unless `given` is the file that the recipe names.
void CheckFile(const std::optional<RecipeFile>& wanted, const std::string& given,
               const std::string& option, const std::string& lit) {
  if (!wanted && given.empty())
    return;
  if (!wanted)
    throw Failure(ExitCode::WrongUsage, lit + ": was lit without " + option);
  if (given.empty())
    throw Failure(ExitCode::WrongUsage,
                  lit + ": was lit with " + option + " " + wanted->name + ", which is to be named");
  if (wanted->digest != RecipeFileOf(given).digest)
    throw Failure(ExitCode::BadInput, given + ": is not the " + wanted->name + " of " + lit);
}

void CheckFiles(const Recipe& recipe, const VerifyOptions& options) {
  CheckFile(recipe.mask, options.mask, "--mask", options.lit);
  CheckFile(recipe.heights, options.heights, "--relief", options.lit);
  if (recipe.channels.size() != options.channels.size())
    throw Failure(ExitCode::WrongUsage, options.lit + ": was lit with " +
                                            std::to_string(recipe.channels.size()) +
                                            " added channels, to be named in their order");
  for (size_t i = 0; i < options.channels.size(); ++i)
    CheckFile(recipe.channels[i], options.channels[i], "--channel", options.lit);
}

// Whether two samples are the same bits: a NaN equals itself, and -0 is not 0.
template <class Sample> bool IsSame(Sample one, Sample other) {
  return one == other;
}
template <> bool IsSame(float one, float other) {
  return std::bit_cast<uint32_t>(one) == std::bit_cast<uint32_t>(other);
}

// Rows of both pictures, side by side in the bands of one, in order from the top.
struct Comparison {
  int numBands; // of each
  double white;
  bool isEqual = true;
  int x = 0, y = 0; // the first pixel that differs
  double squares = 0;
  uint64_t numSamples = 0;

  template <class Sample> void Compare(const Sample* row, int width, int top) {
    for (int i = 0; i < width; ++i, row += size_t{2} * numBands)
      for (int band = 0; band < numBands; ++band) {
        const double difference =
            (static_cast<double>(row[band]) - static_cast<double>(row[band + numBands])) / white;
        squares += std::isfinite(difference) ? difference * difference : 0.0;
        if (!isEqual || IsSame(row[band], row[band + numBands]))
          continue;
        isEqual = false;
        x = i;
        y = top;
      }
    numSamples += static_cast<uint64_t>(width) * static_cast<uint64_t>(numBands);
  }

  static int Take(VipsRegion* region, VipsRect* area, void* comparison) {
    auto& self = *static_cast<Comparison*>(comparison);
    for (int y = area->top; y < area->top + area->height; ++y) {
      const VipsPel* row = VIPS_REGION_ADDR(region, area->left, y);
      if (region->im->BandFmt == VIPS_FORMAT_UCHAR)
        self.Compare(row, area->width, y);
      else if (region->im->BandFmt == VIPS_FORMAT_USHORT)
        self.Compare(reinterpret_cast<const uint16_t*>(row), area->width, y);
      else
        self.Compare(reinterpret_cast<const float*>(row), area->width, y);
    }
    return 0;
  }

  // Of 255.
  double Rms() const {
    return numSamples == 0 ? 0 : 255 * std::sqrt(squares / static_cast<double>(numSamples));
  }
};

Comparison Compared(const VImage& made, const VImage& found) {
  const int bands = std::min(made.bands(), found.bands());
  const auto first = [bands](const VImage& image) {
    return image.bands() == bands ? image
                                  : image.extract_band(0, VImage::option()->set("n", bands));
  };
  const VipsBandFormat format = found.format();
  Comparison comparison{bands, format == VIPS_FORMAT_UCHAR    ? 255.0
                               : format == VIPS_FORMAT_USHORT ? 65535.0
                                                              : 1.0};
  const VImage both = first(made).bandjoin(first(found));
  if (vips_sink_disc(both.get_image(), Comparison::Take, &comparison) != 0)
    throw vips::VError();
  return comparison;
}

bool LosesDetail(const VImage& image) {
  const std::string loader =
      image.get_typeof(VIPS_META_LOADER) != 0 ? image.get_string(VIPS_META_LOADER) : "";
  return loader.starts_with("jpeg") || loader.starts_with("webp") || loader.starts_with("heif");
}

ExitCode Tell(const std::string& lit, const Comparison& comparison, bool losesDetail) {
  if (comparison.isEqual) {
    PrintLine(Printable(lit) + ": equal, every pixel");
    return ExitCode::Done;
  }
  char rms[32];
  std::snprintf(rms, sizeof rms, "%.2f", comparison.Rms());
  const std::string difference = std::string(" (RMS ") + rms + " of 255)";
  if (losesDetail && comparison.Rms() <= MOST_LOSS) {
    PrintLine(Printable(lit) + ": equal but for what its format loses" + difference);
    return ExitCode::Done;
  }
  PrintProblem(lit + ": differs from what its recipe makes, first at pixel " +
               std::to_string(comparison.x) + "," + std::to_string(comparison.y) + difference);
  return ExitCode::BadInput;
}

ExitCode Compare(const VerifyOptions& options) {
  const OpenedPhotograph found =
      OpenPhotograph(options.lit, 1, VIPS_FORMAT_NOTSET, VIPS_FORMAT_FLOAT);
  const VImage whole = OpenImage(options.lit);
  const bool losesDetail = LosesDetail(whole);
  const Recipe recipe = RecipeFound(options.lit, whole);
  CheckFiles(recipe, options);
  if (recipe.original && !recipe.original->digest.empty() &&
      recipe.original->digest != RecipeFileOf(options.original).digest)
    PrintProblem(options.original + ": is not the very file that was lit, " +
                 recipe.original->name);
  Surroundings surroundings = ReadSurroundings(recipe.area, options.mask, options.channels);
  if (recipe.relief.kind == LM_height_kind::File)
    surroundings.relief = ReadGreyImage(options.heights);
  OpenedPhotograph original = OpenPhotograph(options.original, 1, DepthOfBits(recipe.bits));
  if (original.planes.width() != found.planes.width() ||
      original.planes.height() != found.planes.height() ||
      original.planes.format() != found.planes.format())
    throw Failure(ExitCode::BadInput, options.lit + ": has another size or depth than " +
                                          options.original + " has when it is lit");
  const LightingOfPhotographs light{recipe.style, recipe.relief, surroundings, recipe.isDeep};
  light.Check(options.original, original);
  const VImage made = LitImage(original.planes, light.Settings(options.original, original.planes));
  return Tell(options.lit, Compared(made, found.planes), losesDetail);
}

// Prints what it found: Done when they are equal, or as near as a format that loses detail allows,
// else BadInput. Throws Failure.
ExitCode Verify(const VerifyOptions& options) {
  StartImageLibrary(ALL_THREADS, {options.maxPixels, MAX_PIXELS_ADVICE});
  const Complaints complaints;
  try {
    const ExitCode code = Compare(options);
    complaints.Check(ExitCode::BadInput, options.original);
    return code;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, options.original);
  }
}

} // namespace

void AddVerify(CLI::App& app, Command& command) {
  auto [verify, options] = AddCommand(app, command, "verify",
                                      "Check that a lit picture is what its recipe makes", Verify);
  verify.footer(
      "The original is lit again by the recipe that limn apply --recipe has written into\n"
      "the lit picture. Pixels have to be equal; where the format loses detail, as JPEG\n"
      "does, they may differ by what it loses. Exits with 3 where they differ.\n\n"
      "  limn apply --recipe -s Campfire photo.tif -o lit.png\n"
      "  limn verify photo.tif lit.png\n\n" +
      std::string(EXIT_CODES));
  verify.add_option("ORIGINAL", options.original, "The photograph that was lit")->required();
  verify.add_option("LIT", options.lit, "What it became, with its recipe")->required();
  AddValue(verify, "--mask", options.mask, "IMAGE", "The mask that it was lit with");
  AddValue(verify, "--channel", options.channels, "IMAGE",
           "A channel that was added; may be repeated");
  AddValue(verify, "--relief", options.heights, "IMAGE", "The image that its heights come from");
  AddMaxPixels(verify, options.maxPixels);
}

} // namespace limn
