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

// Decodes, lights and writes a few rows at a time.
JobDone LightInPassing(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                       const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.ExistingOutputs();
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
    const auto hasSourceFailed = std::make_shared<std::atomic<bool>>(false);
    const vips::VImage lit = light.Light(pair.input, opened.planes, hasSourceFailed);
    recipe.PutInto(opened.metadata, pair.output, opened.notices);
    vips_image_set_progress(lit.get_image(), TRUE);
    g_signal_connect(lit.get_image(), "eval", G_CALLBACK(ProgressTeller::Tell), &teller);
    WriteImage({lit, opened.metadata, source, hasSourceFailed}, pair.output, plan.targets[index],
               existing, complaints, opened.notices);
    tellNotices();
    return {width, height};
  } catch (const AlreadyThere&) {
    throw;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, source);
  }
}

// Makes a photograph's heights its last channel, unless they are the style's own.
void AddRelief(const LM_height_source& source, const std::string& path, LM_style& style,
               Surroundings& surroundings, Photograph& photograph) {
  const Complaints complaints;
  try {
    const HeightSubject subject =
        SubjectOf(path, photograph.width, photograph.height, surroundings);
    CheckSurroundings(surroundings, subject.width, subject.height, ShownName(path));
    NoteScaled(surroundings, subject.width, subject.height, photograph.notices);
    const size_t numAdded = surroundings.channels.size();
    LitSettings settings{};
    settings.style = style;
    SetChannels(source, subject, surroundings.channels, photograph.numPlanes, false, settings);
    style = settings.style;
    const std::vector<vips::VImage>& channels = settings.channels;
    for (size_t i = 0; i < channels.size(); ++i) {
      const bool isFitting = i < numAdded && surroundings.channels[i].width == subject.width &&
                             surroundings.channels[i].height == subject.height;
      if (isFitting)
        continue;
      surroundings.channels.resize(std::max(surroundings.channels.size(), i + 1));
      GreyImage& channel = surroundings.channels[i];
      channel = {channel.file, subject.width, subject.height, DecodedPixels(channels[i]), {}};
    }
    complaints.Check(ExitCode::BadInput, ShownName(path));
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, ShownName(path));
  }
}

// Decodes the whole image, has the plug-in light it, and writes it.
JobDone LightThroughPlugin(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                           const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.ExistingOutputs();
  const std::string source = ShownName(pair.input);
  const ImageRecipe recipe(plan, tools, index, NumBits(VIPS_FORMAT_UCHAR));
  if (plan.options.isUpdating && recipe.IsIn(plan.targets[index]))
    return {0, 0, JobDone::UpToDate};
  Photograph photograph = ReadPhotograph(pair.input);
  channel.Progress(READ_SHARE);
  double told = 0;
  LM_style style = plan.styles[pair.style];
  Surroundings surroundings = tools.surroundings; // which are fitted to this photograph
  AddRelief(plan.reliefs[pair.style], pair.input, style, surroundings, photograph);
  LightPhotograph(*tools.plugin, style, surroundings, photograph, source, [&](double share) {
    if (share < told + 0.01)
      return;
    told = share;
    channel.Progress(READ_SHARE + share * (LIT_SHARE - READ_SHARE));
  });
  recipe.PutInto(photograph.metadata, pair.output, photograph.notices);
  WritePhotograph(photograph, pair.output, plan.targets[index], existing);
  for (const std::string& notice : photograph.notices)
    channel.Notice(source + ": " + notice);
  return {photograph.width, photograph.height};
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
  return tools.plugin && !plan.options.isDryRun ? LightThroughPlugin(plan, tools, index, channel)
                                                : LightInPassing(plan, tools, index, channel);
}

} // namespace limn
