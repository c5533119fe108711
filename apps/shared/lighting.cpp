#include "lighting.h"

#include "failure.h"
#include "height_image.h"
#include "posix_file.h"

#include "LM_style_lighting.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>

namespace limn {
namespace {

std::string Size(int width, int height) {
  return std::to_string(width) + " × " + std::to_string(height);
}

void CheckSize(const GreyImage& grey, int width, int height, const std::string& file) {
  if (grey.width != width || grey.height != height)
    throw Failure(ExitCode::BadInput, grey.file + ": is " + Size(grey.width, grey.height) +
                                          " pixels, and " + file + " is " + Size(width, height));
}

// Of an outcome that is not well.
ExitCode CodeOf(CVOutcome outcome) {
  return outcome == CVOutcome::Cancelled  ? ExitCode::Cancelled
         : outcome == CVOutcome::NoMemory ? ExitCode::NoMemory
                                          : ExitCode::Refused;
}

std::string PathOfPlugin() {
  if (const char* named = std::getenv("LIMN_PLUGIN"); named != nullptr && *named != '\0')
    return named;
  std::error_code error;
  const std::filesystem::path folder = ProgramFolder();
  const auto installed = (folder / LIMN_PLUGIN_FOLDER / "limn.so").lexically_normal();
  return std::filesystem::exists(installed, error)
             ? installed
             : (folder / "../lib/limn.so").lexically_normal(); // built
}

} // namespace

void ParsePixels(const std::string& option, const std::string& text, const char* form,
                 std::span<int> numbers) {
  const char* next = text.data();
  const char* const end = next + text.size();
  for (int& number : numbers) {
    const auto [stop, error] = std::from_chars(next, end, number);
    const bool isLast = &number == &numbers.back();
    const bool isSeparated = isLast ? stop == end : stop != end && *stop == ',';
    if (error != std::errc() || !isSeparated || number < 0 || number > LIMN_LONGEST_SIDE)
      throw Failure(ExitCode::WrongUsage,
                    option + " " + text + ": is not of the form " + form + " in pixels");
    next = stop + (isLast ? 0 : 1);
  }
}

std::optional<limn_area> ParseArea(const std::string& text) {
  if (text.empty())
    return std::nullopt;
  int numbers[4] = {};
  ParsePixels("--area", text, "X,Y,WIDTH,HEIGHT", numbers);
  const limn_area area{numbers[0], numbers[1], numbers[2], numbers[3]};
  if (area.width == 0 || area.height == 0)
    throw Failure(ExitCode::WrongUsage, "--area " + text + ": is empty");
  return area;
}

Surroundings ReadSurroundings(const std::optional<limn_area>& area, const std::string& mask,
                              const std::vector<std::string>& channels) {
  Surroundings surroundings;
  surroundings.area = area;
  if (!mask.empty())
    surroundings.mask = ReadMask(mask);
  for (const std::string& channel : channels)
    surroundings.channels.push_back(ReadGreyImage(channel));
  return surroundings;
}

std::filesystem::path ProgramFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) // and not what lies below the current folder
    throw Failure(ExitCode::Refused, "/proc/self/exe: " + SystemReason(error.value()));
  return program.parent_path();
}

CVPlugin LoadPlugin() {
  CVPlugin plugin;
  CheckRun(plugin.load(PathOfPlugin()), "the plug-in");
  return plugin;
}

CVRect AreaOf(const Surroundings& surroundings, int width, int height, const std::string& file) {
  const limn_area area = surroundings.area.value_or(limn_area{0, 0, width, height});
  if (area.x > width - area.width || area.y > height - area.height)
    throw Failure(ExitCode::WrongUsage,
                  file + ": the area reaches outside its " + Size(width, height) + " pixels");
  return {static_cast<int16_t>(area.y), static_cast<int16_t>(area.x),
          static_cast<int16_t>(area.y + area.height), static_cast<int16_t>(area.x + area.width)};
}

void CheckRun(const CVResult& result, const std::string& file) {
  if (!result.ok())
    throw Failure(CodeOf(result.outcome), file + ": " + result.message);
}

void CheckSurroundings(const Surroundings& surroundings, int width, int height,
                       const std::string& file) {
  AreaOf(surroundings, width, height, file);
  for (const GreyImage& channel : surroundings.channels)
    CheckShape(channel, width, height, file);
  if (surroundings.relief)
    CheckShape(*surroundings.relief, width, height, file);
  if (surroundings.mask)
    CheckSize(*surroundings.mask, width, height, file);
}

std::unique_ptr<foo> MakeParameters(const LM_style& style, CVRect area, int numChannels,
                                    const std::string& file) {
  auto parameters = std::make_unique<foo>();
  if (!LM_ParametersFromStyle(style, area.right - area.left, area.bottom - area.top, numChannels,
                              parameters.get()))
    throw Failure(ExitCode::WrongUsage, file + ": the style holds no light");
  return parameters;
}

void NoteScaling(const GreyImage& grey, int width, int height, std::vector<std::string>& notices) {
  if (grey.width != width || grey.height != height)
    notices.push_back(grey.file + " is scaled from " + Size(grey.width, grey.height) + " to its " +
                      Size(width, height) + " pixels");
}

void AddSurroundings(CVDocument& document, Surroundings& surroundings, const std::string& file) {
  const auto rowStride = static_cast<size_t>(document.width());
  for (GreyImage& channel : surroundings.channels) {
    CheckSize(channel, document.width(), document.height(), file);
    CheckRun(document.wrapChannel(ChannelName(channel.file), channel.pixels.data(), rowStride),
             file);
  }
  if (surroundings.mask) {
    CheckSize(*surroundings.mask, document.width(), document.height(), file);
    CheckRun(document.wrapMask(surroundings.mask->pixels.data(), rowStride), file);
  }
}

CVDocument MakeDocument(Surroundings& surroundings, Photograph& photograph,
                        const std::string& file) {
  CVDocument document;
  const size_t rowStride = static_cast<size_t>(photograph.width) * photograph.numPlanes;
  CheckRun(document.wrap(photograph.pixels.data(), rowStride, photograph.width, photograph.height,
                         photograph.numPlanes),
           file);
  for (GreyImage& channel : surroundings.channels) {
    NoteScaling(channel, photograph.width, photograph.height, photograph.notices);
    ScaleGrey(channel, photograph.width, photograph.height, file);
  }
  AddSurroundings(document, surroundings, file);
  return document;
}

void NoteMissingRelief(const LM_style& style, int numChannels, std::vector<std::string>& notices) {
  if (style.bumpChannel != 0 && LM_ChannelOrNone(style.bumpChannel, numChannels) == 0)
    notices.push_back("has no channel " + std::to_string(style.bumpChannel) +
                      ", so it is lit without the style's relief");
}

std::string ChannelName(const std::string& file) {
  return std::filesystem::path(file).stem().string();
}

} // namespace limn
