// What a hand feels at the editor's canvas, without a screen: the time from a change of the lights
// to the painted frame. usage: bench_canvas [WIDTH HEIGHT [MEGAPIXELS]]
#include "Canvas.h"

#include "LM_style_fields.h"
#include "ToolboxDesktop.h"
#include "style_source.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using vips::VImage;

constexpr int FRAMES = 40;

// Three planes of soft shapes with grain, 3 : 2.
editor::OpenedImage MakePicture(double megapixels) {
  editor::OpenedImage image;
  limn::Photograph& photograph = image.photograph;
  photograph.height = static_cast<int>(std::sqrt(megapixels * 1e6 / 1.5));
  photograph.width = photograph.height * 3 / 2;
  photograph.numPlanes = 3;
  const VImage shapes =
      VImage::perlin(photograph.width, photograph.height, VImage::option()->set("cell_size", 400));
  const VImage grain = VImage::gaussnoise(photograph.width, photograph.height,
                                          VImage::option()->set("sigma", 6)->set("mean", 0));
  const VImage grey = shapes * 80 + 120 + grain;
  photograph.pixels =
      limn::DecodedPixels((grey * std::vector<double>{1, 0.9, 0.8}).cast(VIPS_FORMAT_UCHAR));
  image.path = "bench.png";
  return image;
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
    QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
  canvas.viewport()->repaint();
}

// Milliseconds a frame while the first light is dragged, or the gloss.
double Drag(editor::EditorDocument& document, editor::Canvas& canvas, LM_style style,
            bool isSurface) {
  document.keepLights(style, "Lights");
  AwaitFrame(canvas);
  QElapsedTimer timer;
  timer.start();
  for (int i = 0; i < FRAMES; ++i) {
    if (isSurface)
      style.gloss = static_cast<int16_t>(i);
    else
      Move(style, 0, i - 100, -60);
    document.tryLights(style);
    AwaitFrame(canvas);
  }
  const double each = static_cast<double>(timer.nsecsElapsed()) / 1e6 / FRAMES;
  document.stopTrying();
  AwaitFrame(canvas);
  return each;
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

void Print(const char* what, double milliseconds) {
  std::printf("%-44s %8.1f ms  %6.1f /s\n", what, milliseconds, 1000 / milliseconds);
  std::fflush(stdout);
}

void Measure(QSize size, double megapixels) {
  editor::EditorDocument document;
  editor::Canvas canvas(document);
  canvas.resize(size);
  canvas.show();
  editor::OpenedImage picture = MakePicture(megapixels);
  QElapsedTimer timer;
  timer.start();
  document.setImage(std::move(picture));
  AwaitFrame(canvas);
  Print("decoded picture to its first frame", static_cast<double>(timer.elapsed()));
  Print("four lights, one moved", Drag(document, canvas, MakeLights(4, false), false));
  Print("four lights, gloss moved", Drag(document, canvas, MakeLights(4, false), true));
  Print("sixteen lights, one moved", Drag(document, canvas, MakeLights(16, false), false));
  Print("sixteen in relief, one moved", Drag(document, canvas, MakeLights(16, true), false));
  Print("sixteen in relief, gloss moved", Drag(document, canvas, MakeLights(16, true), true));
  canvas.setZoom(1.0);
  AwaitFrame(canvas);
  Print("at 100 %, four lights, one moved", Drag(document, canvas, MakeLights(4, false), false));
  canvas.zoomToFit();
  AwaitFrame(canvas);
  const std::vector<LM_listed_style> styles = limn::AllStyles();
  timer.start();
  for (const LM_listed_style& style : styles) {
    document.tryLights(style.style);
    AwaitFrame(canvas);
  }
  Print("from hovering a style to seeing it",
        static_cast<double>(timer.elapsed()) / static_cast<double>(styles.size()));
  for (int i = 0; i < 50; ++i) {
    LM_style style = MakeLights(4, false);
    style.gloss = static_cast<int16_t>(i);
    document.keepLights(style, "Gloss");
    AwaitFrame(canvas);
  }
  std::printf("memory after fifty edits: %ld MB, at most %ld MB, of which steps %.3f MB\n",
              Memory("VmRSS:"), Memory("VmHWM:"),
              static_cast<double>(document.undoBytes()) / (1 << 20));
}

} // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QSize size(argc > 2 ? std::atoi(argv[1]) : 1920, argc > 2 ? std::atoi(argv[2]) : 1080);
  const double megapixels = argc > 3 ? std::atof(argv[3]) : 24;
  static int desktopArgc = 1;
  if (!TB_StartDesktop(desktopArgc, argv))
    return 1;
  editor::StartImageFiles();
  Measure(size, megapixels);
  return 0;
}
