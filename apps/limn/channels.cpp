#include "channels.h"

#include "image_file.h"
#include "image_library.h"
#include "lighting.h"
#include "posix_file.h"
#include "report.h"

namespace limn {

ExitCode PrintChannels(const std::string& image, const std::vector<std::string>& added) {
  StartImageLibrary(1);
  const int numPlanes = CountPlanes(image);
  std::vector<std::string> names;
  // A document names its own channels; it needs no pixels for that.
  CVDocument document;
  if (!document.create(1, 1, CV_MODE_RGB, numPlanes).ok())
    throw Failure(ExitCode::BadInput, image + ": has too many channels");
  for (int channel = 0; channel < numPlanes; ++channel)
    names.push_back(document.channelName(channel));
  for (const std::string& file : added) {
    OpenRegularFile(file);
    names.push_back(ChannelName(file));
  }
  for (size_t i = 0; i < names.size(); ++i)
    PrintLine(std::to_string(i + 1) + "  " + Printable(names[i]));
  return ExitCode::Done;
}

} // namespace limn
