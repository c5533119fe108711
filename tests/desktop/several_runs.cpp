// usage: several_runs MODULE (ask|repeat)...
// Filters the same picture once for each word, in one session with the plug-in: with its dialog, or
// repeating with what the last OK left. Prints the outcome and a sum over the pixels for each.
#include "CVFilterSession.h"
#include "ToolboxDesktop.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int WIDTH = 200;
constexpr int HEIGHT = 150;

int16_t ShowPixels(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column,
                   void*) {
  return ShowPixelMap(map, source, row, column);
}

std::vector<uint8_t> Picture() {
  std::vector<uint8_t> pixels;
  for (int y = 0; y < HEIGHT; ++y)
    for (int x = 0; x < WIDTH; ++x)
      for (const int value : {x, y, 255 - x})
        pixels.push_back(static_cast<uint8_t>(value));
  return pixels;
}

unsigned Sum(const std::vector<uint8_t>& pixels) {
  unsigned sum = 0;
  for (const uint8_t byte : pixels)
    sum = sum * 31 + byte;
  return sum;
}

void Run(CVFilterSession& session, CVDialog dialog) {
  std::vector<uint8_t> pixels = Picture();
  CVDocument document;
  document.wrap(pixels.data(), size_t{3} * WIDTH, WIDTH, HEIGHT, CV_MODE_RGB, 3);
  CVRunOptions options;
  options.dialog = dialog;
  options.services.showPixels = ShowPixels;
  const CVResult result = session.run(document, document.bounds(), options);
  const char* outcome = result.ok()                              ? "done"
                        : result.outcome == CVOutcome::Cancelled ? "cancelled"
                                                                 : result.message.c_str();
  std::printf("%s %08x\n", outcome, Sum(pixels));
  std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
  int desktopArgc = 1;
  CVPlugin plugin;
  if (argc < 2 || !TB_StartDesktop(desktopArgc, argv) || !plugin.load(argv[1]).ok())
    return 2;
  CVFilterSession session(plugin);
  for (int i = 2; i < argc; ++i)
    Run(session, std::strcmp(argv[i], "ask") == 0 ? CVDialog::Yes : CVDialog::No);
  return 0;
}
