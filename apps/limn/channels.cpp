// limn channels: what an image's channels are.
#include "command_line.h"

#include "image_file.h"
#include "image_library.h"
#include "lighting.h"
#include "option_value.h"
#include "posix_file.h"
#include "report.h"

#include <string>
#include <vector>

namespace limn {
namespace {

struct ChannelsOptions {
  std::string image;
  std::vector<std::string> added;
  uint64_t maxPixels = 0; // as for limn apply
};

// Prints the channels that `limn apply` would find in the image, with the numbers by which a style
// names its relief channel. Throws Failure.
ExitCode PrintChannels(const ChannelsOptions& options) {
  StartImageLibrary(1, {options.maxPixels, MAX_PIXELS_ADVICE});
  const int numPlanes = CountPlanes(options.image);
  // A document names its own channels; it needs no pixels for that.
  CVDocument document;
  if (!document.create(1, 1, numPlanes).ok())
    throw Failure(ExitCode::BadInput, options.image + ": has too many channels");
  for (const std::string& file : options.added)
    OpenRegularFile(file); // one that is missing is reported before anything is printed
  int number = 0;
  const auto print = [&](const std::string& name) {
    PrintLine(std::to_string(++number) + "  " + Printable(name));
  };
  for (int channel = 0; channel < numPlanes; ++channel)
    print(document.channelName(channel));
  for (const std::string& file : options.added)
    print(ChannelName(file));
  return ExitCode::Done;
}

} // namespace

void AddChannels(CLI::App& app, Command& command) {
  auto [channels, options] = AddCommand(
      app, command, "channels", "List an image's channels by number and name", PrintChannels);
  channels.footer("A style's bumpChannel takes such a number; 0 there means no relief.");
  channels.add_option("IMAGE", options.image, "The image")->required();
  AddValue(channels, "--channel", options.added, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(channels, options.maxPixels);
}

} // namespace limn
