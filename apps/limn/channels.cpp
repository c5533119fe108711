#include "channels.h"

#include "image_file.h"
#include "image_library.h"
#include "lighting.h"
#include "posix_file.h"
#include "report.h"

namespace limn {

ExitCode PrintChannels(const std::string& image, const std::vector<std::string>& added,
                       uint64_t maxPixels) {
  StartImageLibrary(1, {maxPixels, MAX_PIXELS_ADVICE});
  const int numPlanes = CountPlanes(image);
  std::vector<std::string> names;
  // A document names its own channels; it needs no pixels for that.
  CVDocument document;
  if (!document.create(1, 1, numPlanes).ok())
    throw Failure(ExitCode::BadInput, image + ": has too many channels");
  int number = 0;
  const auto print = [&](const std::string& name) {
    PrintLine(std::to_string(++number) + "  " + Printable(name));
  };
  for (const std::string& file : added)
    OpenRegularFile(file); // one that is missing is reported before anything is printed
  for (int channel = 0; channel < numPlanes; ++channel)
    print(document.channelName(channel));
  for (const std::string& file : added)
    print(ChannelName(file));
  return ExitCode::Done;
}

} // namespace limn
