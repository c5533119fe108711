#include "apply_one.h"

#include "image_library.h"
#include "image_output.h"
#include "output_target.h"

namespace limn {
namespace {

// Reading, lighting and writing as shares of the progress.
constexpr double READ_SHARE = 0.2;
constexpr double LIT_SHARE = 0.8;

} // namespace

ApplyTools PrepareTools(const ApplyPlan& plan) {
  StartImageLibrary(plan.threads);
  ApplyTools tools{LoadPlugin(), {}, {}};
  const auto readGrey = [&](const std::string& file) {
    std::vector<std::string> notices;
    GreyImage grey = ReadGreyImage(file, notices);
    for (const std::string& notice : notices)
      tools.notices.push_back(std::string(file).append(": ").append(notice));
    return grey;
  };
  tools.surroundings.area = plan.area;
  if (!plan.options.mask.empty())
    tools.surroundings.mask = readGrey(plan.options.mask);
  for (const std::string& channel : plan.options.channels)
    tools.surroundings.channels.push_back(readGrey(channel));
  return tools;
}

AppliedSize ApplyOne(const ApplyPlan& plan, ApplyTools& tools, size_t index,
                     const JobChannel& channel) {
  const ImagePair& pair = plan.pairs[index];
  const Existing existing = plan.options.force ? Existing::Replace : Existing::Keep;
  CheckTarget(pair.input, pair.output, existing);
  CheckOutputFormat(pair.output);
  Photograph photograph = ReadPhotograph(pair.input);
  channel.Progress(READ_SHARE);
  double told = 0;
  LightPhotograph(tools.plugin, plan.style, tools.surroundings, photograph, pair.input,
                  [&](double share) {
                    if (share < told + 0.01)
                      return;
                    told = share;
                    channel.Progress(READ_SHARE + share * (LIT_SHARE - READ_SHARE));
                  });
  MakeFolder(plan.targets[index]);
  WritePhotograph(photograph, pair.output, plan.targets[index], existing);
  for (const std::string& notice : photograph.notices)
    channel.Notice(pair.input + ": " + notice);
  return {photograph.width, photograph.height};
}

} // namespace limn
