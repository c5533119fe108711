#include "lighting.h"

#include "failure.h"

#include "LM_parameters.h"
#include "LM_style_settings.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>

namespace limn {
namespace {

std::string Size(int width, int height) {
  return std::to_string(width) + " × " + std::to_string(height);
}

void CheckSize(const GreyImage& grey, const Photograph& photograph, const std::string& file) {
  if (grey.width != photograph.width || grey.height != photograph.height)
    throw Failure(ExitCode::BadInput, grey.file + ": is " + Size(grey.width, grey.height) +
                                          " pixels, and " + file + " is " +
                                          Size(photograph.width, photograph.height));
}

CVRect AreaOf(const Surroundings& surroundings, const Photograph& photograph,
              const std::string& file) {
  const Area area = surroundings.area.value_or(Area{0, 0, photograph.width, photograph.height});
  if (area.x > photograph.width - area.width || area.y > photograph.height - area.height)
    throw Failure(ExitCode::WrongUsage, file + ": the area reaches outside its " +
                                            Size(photograph.width, photograph.height) + " pixels");
  return {static_cast<int16_t>(area.y), static_cast<int16_t>(area.x),
          static_cast<int16_t>(area.y + area.height), static_cast<int16_t>(area.x + area.width)};
}

ExitCode CodeOf(CVOutcome outcome) {
  switch (outcome) {
  case CVOutcome::Done:
    return ExitCode::Done;
  case CVOutcome::Cancelled:
    return ExitCode::Cancelled;
  case CVOutcome::NoMemory:
    return ExitCode::NoMemory;
  default:
    return ExitCode::Refused;
  }
}

void Check(const CVResult& result, const std::string& file) {
  if (!result.ok())
    throw Failure(CodeOf(result.outcome), file + ": " + result.message);
}

// The document borrows all pixels.
CVDocument MakeDocument(Surroundings& surroundings, Photograph& photograph,
                        const std::string& file) {
  CVDocument document;
  const size_t rowStride = static_cast<size_t>(photograph.width) * photograph.numPlanes;
  Check(document.wrap(photograph.pixels.data(), rowStride, photograph.width, photograph.height,
                      CV_MODE_RGB, photograph.numPlanes),
        file);
  for (GreyImage& channel : surroundings.channels) {
    CheckSize(channel, photograph, file);
    Check(document.wrapChannel(ChannelName(channel.file), channel.pixels.data(),
                               static_cast<size_t>(channel.width)),
          file);
  }
  if (surroundings.mask) {
    CheckSize(*surroundings.mask, photograph, file);
    Check(
        document.wrapMask(surroundings.mask->pixels.data(), static_cast<size_t>(photograph.width)),
        file);
  }
  return document;
}

std::unique_ptr<foo> MakeParameters(const LM_style& style, CVRect area, int numChannels,
                                    const std::string& file) {
  auto parameters = std::make_unique<foo>();
  if (!LM_ParametersFromStyle(style, area.right - area.left, area.bottom - area.top, numChannels,
                              parameters.get()))
    throw Failure(ExitCode::NoMemory, file + ": not enough memory");
  return parameters;
}

void NoteMissingRelief(const LM_style& style, int numChannels, Photograph& photograph) {
  if (style.bumpChannel != 0 && LM_ChannelOrNone(style.bumpChannel, numChannels) == 0)
    photograph.notices.push_back("has no channel " + std::to_string(style.bumpChannel) +
                                 ", so it is lit without the style's relief");
}

} // namespace

CVPlugin LoadPlugin() {
  std::vector<std::string> candidates;
  if (const char* named = std::getenv("LIMN_PLUGIN"); named != nullptr && *named != '\0') {
    candidates.emplace_back(named);
  } else {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    candidates.push_back((program.parent_path().parent_path() / "lib" / "limn.so").string());
    candidates.emplace_back(LIMN_PLUGIN_FOLDER "/limn.so");
  }
  CVPlugin plugin;
  CVResult result;
  for (const std::string& candidate : candidates) {
    std::error_code error;
    if (&candidate != &candidates.back() && !std::filesystem::exists(candidate, error))
      continue;
    result = plugin.load(candidate);
    break;
  }
  if (!result.ok())
    throw Failure(CodeOf(result.outcome), "the plug-in: " + result.message);
  return plugin;
}

std::string ChannelName(const std::string& file) {
  return std::filesystem::path(file).stem().string();
}

void LightPhotograph(const CVPlugin& plugin, const LM_style& style, Surroundings& surroundings,
                     Photograph& photograph, const std::string& file,
                     const std::function<void(double)>& progress) {
  const CVRect area = AreaOf(surroundings, photograph, file);
  CVDocument document = MakeDocument(surroundings, photograph, file);
  NoteMissingRelief(style, document.channelCount(), photograph);
  const auto parameters = MakeParameters(style, area, document.channelCount(), file);
  CVFilterSession session(plugin);
  Check(session.setParameters(parameters.get(), sizeof *parameters), file);
  CVRunOptions options;
  options.dialog = CVDialog::No;
  options.progress = progress;
  Check(session.run(document, area, options), file);
}

} // namespace limn
