// What a hand feels at the editor's canvas, without a screen: the time from a change of the lights
// to the painted frame, and what all cores spend on it, which a busy machine changes less.
// usage: bench_canvas [WIDTH HEIGHT [MEGAPIXELS | PHOTOGRAPH]]
#include "Canvas.h"

#include "LM_style_fields.h"
#include "ToolboxDesktop.h"
#include "style_source.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using vips::VImage;

constexpr int FRAMES = 40;

// Soft shapes with grain, 3 : 2.
void WritePicture(double megapixels, const QString& path) {
  const int height = static_cast<int>(std::sqrt(megapixels * 1e6 / 1.5));
  const int width = height * 3 / 2;
  const VImage shapes = VImage::perlin(width, height, VImage::option()->set("cell_size", 400));
  const VImage grain =
      VImage::gaussnoise(width, height, VImage::option()->set("sigma", 6)->set("mean", 0));
  const VImage grey = shapes * 80 + 120 + grain;
  (grey * std::vector<double>{1, 0.9, 0.8})
      .cast(VIPS_FORMAT_UCHAR)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
      .write_to_file(editor::Encoded(path).c_str(), VImage::option()->set("Q", 92));
}

// Since it was made: what passed, and what all cores have worked. In milliseconds.
class Watch {
public:
  Watch() { _timer.start(); }
  double Passed() const { return static_cast<double>(_timer.nsecsElapsed()) / 1e6; }
  double Worked() const {
    return static_cast<double>(std::clock() - _clock) * 1e3 / CLOCKS_PER_SEC;
  }

private:
  QElapsedTimer _timer;
  std::clock_t _clock = std::clock();
};

void Print(const char* what, const Watch& watch, double count = 1) {
  std::printf("%-44s %8.1f ms  %8.1f ms of work\n", what, watch.Passed() / count,
              watch.Worked() / count);
  std::fflush(stdout);
}

// How fast the machine is at the moment.
void PrintMachine() {
  constexpr int ADDITIONS = 100'000'000;
  const Watch watch;
  for (volatile int i = 0; i < ADDITIONS;)
    i = i + 1;
  Print("a hundred million additions", watch);
}

void Set(LM_style& style, const std::string& key, const std::string& value) {
  std::string why;
  if (!LM_SetStyleField(style, key, value, why)) {
    std::fprintf(stderr, "bench_canvas: %s: %s\n", key.c_str(), why.c_str());
    std::exit(1);
  }
}

void Move(LM_style& style, int light, int h, int v) {
  Set(style, "light." + std::to_string(light) + ".center",
      std::to_string(h) + "," + std::to_string(v));
}

LM_style MakeLights(int count, bool relief) {
  LM_style style = LM_NewStyle();
  Set(style, "ambientBrightness", "-30");
  for (int i = 0; i < count; ++i) {
    const std::string light = "light." + std::to_string(i);
    Set(style, light + ".type", i % 2 == 0 ? "omni" : "spot");
    Set(style, light + ".intensity", "60");
    Move(style, i, -100 + 190 * (i % 4) / 3, -60 + 110 * (i / 4) / 3);
  }
  Set(style, "bumpChannel", relief ? "1" : "0");
  Set(style, "bumpAmplitude", "60");
  return style;
}

void AwaitFrame(editor::Canvas& canvas) {
  while (!canvas.isUpToDate())
    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  canvas.viewport()->repaint();
}

// The frames while the first light is dragged, or the gloss.
void Drag(const char* what, editor::EditorDocument& document, editor::Canvas& canvas,
          LM_style style, bool isSurface) {
  document.keepLights(style, "Lights");
  AwaitFrame(canvas);
  const Watch watch;
  for (int i = 0; i < FRAMES; ++i) {
    if (isSurface)
      style.gloss = static_cast<int16_t>(i);
    else
      Move(style, 0, i - 100, -60);
    document.tryLights(style);
    AwaitFrame(canvas);
  }
  Print(what, watch, FRAMES);
  document.stopTrying();
  AwaitFrame(canvas);
}

long Memory(const char* field) {
  QFile status("/proc/self/status");
  if (!status.open(QIODevice::ReadOnly))
    return 0;
  for (const QByteArray& line : status.readAll().split('\n'))
    if (line.startsWith(field))
      return line.simplified().split(' ').value(1).toLong() / 1024;
  return 0;
}

void Measure(QSize size, const QString& path, const QString& saved) {
  editor::EditorDocument document;
  editor::Canvas canvas(document);
  canvas.resize(size);
  canvas.show();
  PrintMachine();
  const Watch opening;
  editor::OpenedImage picture = editor::OpenImageFile(path);
  Print("the file decoded", opening);
  document.setImage(std::move(picture));
  AwaitFrame(canvas);
  Print("the file to its first frame", opening);
  Drag("four lights, one moved", document, canvas, MakeLights(4, false), false);
  Drag("four lights, gloss moved", document, canvas, MakeLights(4, false), true);
  Drag("sixteen lights, one moved", document, canvas, MakeLights(16, false), false);
  Drag("sixteen in relief, one moved", document, canvas, MakeLights(16, true), false);
  Drag("sixteen in relief, gloss moved", document, canvas, MakeLights(16, true), true);
  canvas.setZoom(1.0);
  AwaitFrame(canvas);
  Drag("at 100 %, four lights, one moved", document, canvas, MakeLights(4, false), false);
  canvas.zoomToFit();
  AwaitFrame(canvas);
  const std::vector<LM_listed_style> styles = limn::AllStyles();
  const Watch hovering;
  for (const LM_listed_style& style : styles) {
    document.tryLights(style.style);
    AwaitFrame(canvas);
  }
  Print("from hovering a style to seeing it", hovering, static_cast<double>(styles.size()));
  for (int i = 0; i < 50; ++i) {
    LM_style style = MakeLights(4, false);
    style.gloss = static_cast<int16_t>(i);
    document.keepLights(style, "Gloss");
    AwaitFrame(canvas);
  }
  std::printf("memory after fifty edits: %ld MB, at most %ld MB, of which steps %.3f MB\n",
              Memory("VmRSS:"), Memory("VmHWM:"),
              static_cast<double>(document.undoBytes()) / (1 << 20));
  const Watch saving;
  editor::SaveImageFile(document.original().photograph, document.litPlanes(), {}, saved);
  Print("saved as JPEG, with four lights", saving);
  PrintMachine();
}

} // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QSize size(argc > 2 ? std::atoi(argv[1]) : 1920, argc > 2 ? std::atoi(argv[2]) : 1080);
  const double megapixels = argc > 3 ? std::atof(argv[3]) : 24; // 0: a name
  static int desktopArgc = 1;
  if (!TB_StartDesktop(desktopArgc, argv))
    return 1;
  editor::StartImageFiles();
  const QTemporaryDir folder;
  const QString made = folder.filePath("bench.jpg");
  if (megapixels > 0)
    WritePicture(megapixels, made);
  Measure(size, megapixels > 0 ? made : QFile::decodeName(argv[3]), folder.filePath("lit.jpg"));
  return 0;
}
