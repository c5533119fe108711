#include "apply_one.h"

#include "colour_conversion.h"
#include "deep_lighting.h"
#include "height_image.h"
#include "image_library.h"
#include "image_output.h"
#include "image_recipe.h"
#include "image_source.h"
#include "lit_photograph.h"
#include "output_target.h"
#include "plugin_image.h"

#include <algorithm>
#include <memory>

namespace limn {

ApplyTools PrepareTools(const ApplyPlan& plan) {
  StartImageLibrary(plan.threads, {plan.options.maxPixels, MAX_PIXELS_ADVICE});
  ApplyTools tools;
  if (plan.options.isThroughPlugin)
    tools.plugin = LoadPlugin();
  tools.surroundings = ReadSurroundings(plan.area, plan.options.mask, plan.options.channels);
  // Only --relief names a file, and it does so for all styles.
  if (plan.reliefs[0].kind == LM_height_kind::File)
    tools.surroundings.relief = ReadHeights(plan.options.relief, plan.reliefs[0], tools.notices);
  if (plan.options.isWritingRecipe || plan.options.isUpdating)
    tools.recipe = CommonRecipe(plan);
  return tools;
}

namespace {

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

// The planes of an opened photograph, to be lit by the plug-in, which becomes `byPlugin`, or here.
vips::VImage LitPlanesOf(const LightingOfPhotographs& light, const ApplyTools& tools,
                         const std::string& path, const vips::VImage& planes,
                         const std::shared_ptr<std::atomic<bool>>& hasSourceFailed,
                         std::unique_ptr<PluginImage>& byPlugin) {
  if (tools.plugin) {
    auto [surroundings, style] = light.Fitted(path, planes);
    byPlugin = std::make_unique<PluginImage>(*tools.plugin, style, std::move(surroundings), planes,
                                             ShownName(path), hasSourceFailed);
    return byPlugin->Lit();
  }
  LitSettings settings = light.Settings(path, planes);
  settings.hasSourceFailed = hasSourceFailed;
  return LitImage(planes, settings);
}

// Decodes, lights and writes at the same time, a few rows after each other.
JobDone LightInPassing(const ApplyPlan& plan, ApplyTools& tools, const ImagePair& pair,
                       const JobChannel& channel) {
  const std::string source = ShownName(pair.input);
  const Complaints complaints;
  const auto hasSourceFailed = std::make_shared<std::atomic<bool>>(false);
  std::unique_ptr<PluginImage> byPlugin;
  try {
    const OutputBits held = BitsOf(pair.output);
    const VipsBandFormat most = DepthOfBits(held.most);
    const VipsBandFormat asked = std::min(AskedDepth(plan.options.depth), most);
    const bool isLifted = held.least > NumBits(VIPS_FORMAT_UCHAR);
    OpenedPhotograph opened = OpenPhotograph(pair.input, 1,
                                             tools.plugin ? VIPS_FORMAT_UCHAR
                                             : isLifted   ? most
                                                          : asked,
                                             most);
    complaints.Check(ExitCode::BadInput, source); // rather than after all has been decoded
    const int width = opened.planes.width();
    const int height = opened.planes.height();
    const Recipe recipe = RecipeOf(plan, tools, pair, NumBits(opened.planes.format()));
    if (plan.options.isUpdating && IsMadeWith(recipe, pair))
      return {width, height, JobDone::UpToDate};
    const LightingOfPhotographs light{plan.styles[pair.style], plan.reliefs[pair.style],
                                      tools.surroundings, plan.options.depth != "8"};
    light.Check(pair.input, opened);
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
    const vips::VImage lit =
        LitPlanesOf(light, tools, pair.input, opened.planes, hasSourceFailed, byPlugin);
    if (plan.options.isWritingRecipe || plan.options.isUpdating)
      AddRecipe(recipe, pair, opened);
    double told = 0;
    const ProgressAsker teller(lit, [&](double share) { // in whole percents
      if (share > told)
        channel.Progress(told = share);
      return true;
    });
    const Existing existing =
        plan.options.force || plan.options.isUpdating ? Existing::Replace : Existing::Keep;
    WriteImage({lit, opened.metadata, source, hasSourceFailed}, pair.output, pair.target, existing,
               complaints, opened.notices);
    tellNotices();
    return {width, height};
  } catch (const AlreadyThere&) {
    throw;
  } catch (...) {
    if (byPlugin != nullptr)
      byPlugin->CheckPlugin();
    throw CaughtLibraryFailure(ExitCode::BadInput, source);
  }
}

// An update replaces what it made before, which is never its input.
void CheckOutput(const ApplyPlan& plan, const ImagePair& pair) {
  try {
    CheckTarget(pair.input, pair.output, plan.options.force ? Existing::Replace : Existing::Keep);
  } catch (const AlreadyThere&) {
    if (!plan.options.isUpdating)
      throw;
  }
}

} // namespace

JobDone ApplyOne(const ApplyPlan& plan, ApplyTools& tools, const ImagePair& pair,
                 const JobChannel& channel) {
  CheckOutput(plan, pair);
  CheckOutputFormat(pair.output);
  if (plan.options.isDryRun)
    CheckFolder(pair.target);
  return LightInPassing(plan, tools, pair, channel);
}

} // namespace limn
