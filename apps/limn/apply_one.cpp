#include "apply_one.h"

#include "colour_conversion.h"
#include "deep_lighting.h"
#include "image_library.h"
#include "image_output.h"
#include "image_source.h"
#include "output_target.h"

#include <algorithm>

namespace limn {
namespace {

// Reading, lighting and writing as shares of the progress.
constexpr double READ_SHARE = 0.2;
constexpr double LIT_SHARE = 0.8;

} // namespace

ApplyTools PrepareTools(const ApplyPlan& plan) {
  StartImageLibrary(plan.threads, {plan.options.maxPixels, MAX_PIXELS_ADVICE});
  ApplyTools tools;
  if (plan.options.isThroughPlugin)
    tools.plugin = LoadPlugin();
  tools.surroundings = ReadSurroundings(plan.area, plan.options.mask, plan.options.channels);
  return tools;
}

namespace {

// Tells libvips' progress, in whole percents.
struct ProgressTeller {
  const JobChannel& channel;
  int told = 0;

  static void Tell(VipsImage*, VipsProgress* progress, ProgressTeller* teller) {
    if (progress->percent <= teller->told)
      return;
    teller->told = progress->percent;
    teller->channel.Progress(progress->percent / 100.0);
  }
};

// That --depth asks for; NOTSET leaves it to the image.
VipsBandFormat AskedDepth(const std::string& asked) {
  return asked == "8"       ? VIPS_FORMAT_UCHAR
         : asked == "16"    ? VIPS_FORMAT_USHORT
         : asked == "float" ? VIPS_FORMAT_FLOAT
                            : VIPS_FORMAT_NOTSET;
}

// What becomes of a file's depth, or of the one that is asked for; empty when it is kept. lit: of
// the planes. Without the image's name, so that a batch is told once.
std::string NoteDepth(int numBits, VipsBandFormat lit, const std::string& asked,
                      const OutputName& output) {
  const OutputBits held = BitsOf(output);
  const std::string files =
      output.path.substr(output.path.rfind('.') + 1) + output.options + " files hold ";
  const VipsBandFormat depth = AskedDepth(asked);
  if (depth != VIPS_FORMAT_NOTSET && depth < DepthOfBits(held.least))
    return "--depth " + asked + " is not kept: " + files + "floats";
  if (depth > DepthOfBits(held.most))
    return "--depth " + asked + " is not kept: " + files + std::to_string(held.most) +
           " bits a channel";
  const int left = std::min(NumBits(lit), held.most);
  if (numBits <= left)
    return "";
  return DepthNotice(numBits, left) + (left == held.most ? ", since " + files + "no more" : "");
}

// Decodes, lights and writes a few rows at a time.
JobDone LightInPassing(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                       const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.options.force ? Existing::Replace : Existing::Keep;
  const LM_style& style = plan.styles[pair.style];
  const std::string source = ShownName(pair.input);
  const Complaints complaints;
  ProgressTeller teller{channel};
  try {
    const OutputBits held = BitsOf(pair.output);
    const VipsBandFormat most = DepthOfBits(held.most);
    const VipsBandFormat asked = std::min(AskedDepth(plan.options.depth), most);
    const bool isLifted = held.least > NumBits(VIPS_FORMAT_UCHAR);
    OpenedPhotograph opened = OpenPhotograph(pair.input, 1, isLifted ? most : asked, most);
    complaints.Check(ExitCode::BadInput, source); // rather than after all has been decoded
    const int width = opened.planes.width();
    const int height = opened.planes.height();
    CheckSurroundings(tools.surroundings, width, height, source);
    NoteMissingRelief(style,
                      opened.planes.bands() + static_cast<int>(tools.surroundings.channels.size()),
                      opened.notices);
    const std::string depthNotice =
        NoteDepth(opened.numBits, opened.planes.format(), plan.options.depth, pair.output);
    const auto tellNotices = [&] {
      if (!depthNotice.empty())
        channel.Notice(depthNotice);
      for (const std::string& notice : opened.notices)
        channel.Notice(source + ": " + notice);
    };
    if (plan.options.isDryRun) {
      tellNotices();
      return {width, height};
    }
    LitSettings settings = SettingsFor(tools.surroundings, plan.options.depth != "8");
    settings.style = style;
    settings.hasSourceFailed = std::make_shared<std::atomic<bool>>(false);
    const vips::VImage lit = LitImage(opened.planes, settings);
    vips_image_set_progress(lit.get_image(), TRUE);
    g_signal_connect(lit.get_image(), "eval", G_CALLBACK(ProgressTeller::Tell), &teller);
    WriteImage({lit, opened.metadata, source, settings.hasSourceFailed}, pair.output,
               plan.targets[index], existing, complaints, opened.notices);
    tellNotices();
    return {width, height};
  } catch (const AlreadyThere&) {
    throw;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, source);
  }
}

// Decodes the whole image, has the plug-in light it, and writes it.
JobDone LightThroughPlugin(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                           const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.options.force ? Existing::Replace : Existing::Keep;
  const std::string source = ShownName(pair.input);
  Photograph photograph = ReadPhotograph(pair.input);
  channel.Progress(READ_SHARE);
  double told = 0;
  LightPhotograph(*tools.plugin, plan.styles[pair.style], tools.surroundings, photograph, source,
                  [&](double share) {
                    if (share < told + 0.01)
                      return;
                    told = share;
                    channel.Progress(READ_SHARE + share * (LIT_SHARE - READ_SHARE));
                  });
  WritePhotograph(photograph, pair.output, plan.targets[index], existing);
  for (const std::string& notice : photograph.notices)
    channel.Notice(source + ": " + notice);
  return {photograph.width, photograph.height};
}

} // namespace

JobDone ApplyOne(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                 const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  CheckTarget(pair.input, pair.output, plan.options.force ? Existing::Replace : Existing::Keep);
  CheckOutputFormat(pair.output);
  if (plan.options.isDryRun)
    CheckFolder(plan.targets[index]);
  return tools.plugin && !plan.options.isDryRun ? LightThroughPlugin(plan, tools, index, channel)
                                                : LightInPassing(plan, tools, index, channel);
}

} // namespace limn
