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
  if (!plan.reliefs.empty() && plan.reliefs[0].kind == LM_height_kind::File)
    tools.surroundings.relief = ReadHeights(plan.options.relief, plan.reliefs[0], tools.notices);
  if (plan.options.isWritingRecipe || plan.options.isUpdating)
    tools.recipe = CommonRecipe(plan);
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

// The lit planes of an opened photograph.
struct PlanesBeingLit {
  std::unique_ptr<PluginImage> byPlugin; // where that lights them
  vips::VImage planes;
  std::shared_ptr<std::atomic<bool>> hasSourceFailed;
};

PlanesBeingLit LightPlanes(const LightingOfPhotographs& light, const ApplyTools& tools,
                           const std::string& path, const vips::VImage& planes) {
  PlanesBeingLit lit;
  if (tools.plugin) {
    auto [surroundings, style] = light.Fitted(path, planes);
    lit.byPlugin = std::make_unique<PluginImage>(*tools.plugin, style, std::move(surroundings),
                                                 planes, ShownName(path));
    lit.planes = lit.byPlugin->Lit();
    lit.hasSourceFailed = lit.byPlugin->HasSourceFailed();
    return lit;
  }
  lit.hasSourceFailed = std::make_shared<std::atomic<bool>>(false);
  lit.planes = light.Light(path, planes, lit.hasSourceFailed);
  return lit;
}

// Decodes, lights and writes at the same time, a few rows after each other.
JobDone LightInPassing(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                       const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.ExistingOutputs();
  const LM_style& style = plan.styles[pair.style];
  const std::string source = ShownName(pair.input);
  const Complaints complaints;
  ProgressTeller teller{channel};
  PlanesBeingLit lit;
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
    const ImageRecipe recipe(plan, tools, index, NumBits(opened.planes.format()));
    if (plan.options.isUpdating && recipe.IsIn(plan.targets[index]))
      return {width, height, JobDone::UpToDate};
    const LightingOfPhotographs light{style, plan.reliefs[pair.style], tools.surroundings,
                                      plan.options.depth != "8"};
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
    lit = LightPlanes(light, tools, pair.input, opened.planes);
    recipe.PutInto(opened.metadata, pair.output, opened.notices);
    vips_image_set_progress(lit.planes.get_image(), TRUE);
    g_signal_connect(lit.planes.get_image(), "eval", G_CALLBACK(ProgressTeller::Tell), &teller);
    WriteImage({lit.planes, opened.metadata, source, lit.hasSourceFailed}, pair.output,
               plan.targets[index], existing, complaints, opened.notices);
    tellNotices();
    return {width, height};
  } catch (const AlreadyThere&) {
    throw;
  } catch (...) {
    if (lit.byPlugin != nullptr)
      lit.byPlugin->CheckPlugin();
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

JobDone ApplyOne(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                 const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  CheckOutput(plan, pair);
  CheckOutputFormat(pair.output);
  if (plan.options.isDryRun)
    CheckFolder(plan.targets[index]);
  return LightInPassing(plan, tools, index, channel);
}

} // namespace limn
