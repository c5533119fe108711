#include "CanvasLighting.h"

#include "deep_lighting.h"
#include "deep_photograph.h"
#include "failure.h"
#include "height_image.h"
#include "image_library.h"
#include "thumbnail.h"

#include "LM_render.h"
#include "LM_style_lighting.h"

#include <QColorSpace>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace editor {

using vips::VImage;

namespace {

constexpr int COLOURS = 3;
constexpr double OPAQUE = 255;
// Sums of light take no more than this.
constexpr uint64_t MOST_KEPT = 192 << 20;

// The part of planes of 8 bits, as the window draws it.
QImage Drawn(const VImage& planes, const QRect& part) {
  QImage image(part.size(), QImage::Format_RGBX8888);
  if (image.isNull())
    throw std::bad_alloc();
  const VImage seen = planes.extract_area(part.x(), part.y(), part.width(), part.height())
                          .extract_band(0, VImage::option()->set("n", COLOURS))
                          .bandjoin(OPAQUE);
  seen.write(VImage::new_from_memory(image.bits(), static_cast<size_t>(image.sizeInBytes()),
                                     image.width(), image.height(), seen.bands(),
                                     VIPS_FORMAT_UCHAR));
  return std::move(image).convertToFormat(QImage::Format_RGB32);
}

// From the profile that the photograph has, if it is one that can be read.
QColorTransform ToScreen(const VImage& metadata) {
  if (metadata.is_null() || metadata.get_typeof(VIPS_META_ICC_NAME) == 0)
    return {};
  size_t size = 0;
  const void* const profile = metadata.get_blob(VIPS_META_ICC_NAME, &size);
  const QColorSpace space = QColorSpace::fromIccProfile(
      QByteArray(static_cast<const char*>(profile), static_cast<qsizetype>(size)));
  return space.isValid() ? space.transformationToColorSpace(QColorSpace::SRgb) : QColorTransform();
}

QImage OnScreen(const QImage& image, const QColorTransform& toScreen) {
  if (toScreen.isIdentity())
    return image;
  QImage shown = image;
  shown.applyColorTransform(toScreen);
  return shown;
}

// Marks pixels of which a colour has come to its upper end, and those that are quite black.
void MarkEnds(const QImage& lit, QImage& shown) {
  constexpr QRgb BURNT = 0xFFFF003C, DROWNED = 0xFF005AFF;
  for (int y = 0; y < lit.height(); ++y) {
    const auto* from = reinterpret_cast<const QRgb*>(lit.constScanLine(y));
    auto* into = reinterpret_cast<QRgb*>(shown.scanLine(y));
    for (int x = 0; x < lit.width(); ++x) {
      const int most = std::max({qRed(from[x]), qGreen(from[x]), qBlue(from[x])});
      into[x] = most == 255 ? BURNT : most == 0 ? DROWNED : into[x];
    }
  }
}

// The image with no more of its pixels made, and kept, than the part and what its relief reads.
VImage Made(const VImage& image, const View& view) {
  const QRect part =
      view.part.adjusted(-LM_RELIEF_REACH, -LM_RELIEF_REACH, LM_RELIEF_REACH, LM_RELIEF_REACH)
          .intersected(QRect(QPoint(0, 0), view.size));
  return image.extract_area(part.x(), part.y(), part.width(), part.height())
      .copy_memory()
      .embed(part.x(), part.y(), image.width(), image.height());
}

// An area of the picture where it is seen: at least a pixel.
limn_area Reduced(const QRect& area, QSize from, QSize to) {
  const auto place = [](int at, int full, int reduced) {
    return static_cast<int>(std::lround(static_cast<double>(at) * reduced / full));
  };
  const int left = std::min(place(area.x(), from.width(), to.width()), to.width() - 1);
  const int top = std::min(place(area.y(), from.height(), to.height()), to.height() - 1);
  const int right = place(area.x() + area.width(), from.width(), to.width());
  const int bottom = place(area.y() + area.height(), from.height(), to.height());
  return {left, top, std::max(1, right - left), std::max(1, bottom - top)};
}

} // namespace

CanvasLighting::CanvasLighting(EditorDocument& document, QObject* parent)
    : QObject(parent), _document(document) {
  _pool.setMaxThreadCount(1);
}

CanvasLighting::~CanvasLighting() {
  {
    const std::lock_guard lock(_wishing);
    _wish.reset();
  }
  _pool.waitForDone();
}

void CanvasLighting::ask(FrameWish wish) {
  const std::lock_guard lock(_wishing);
  _wish = std::move(wish);
  if (!std::exchange(_isAtWork, true))
    _pool.start([this] { _work(); });
}

void CanvasLighting::_work() {
  for (;;) {
    std::optional<FrameWish> wish;
    {
      const std::lock_guard lock(_wishing);
      wish.swap(_wish);
      if (!wish) {
        _isAtWork = false;
        break;
      }
    }
    const std::shared_lock lock(_document.lock());
    if (wish->original == _document.originalNumber()) // or another wish is on its way
      Q_EMIT made(_make(*wish));
  }
  vips_thread_shutdown();
}

Frame CanvasLighting::_make(const FrameWish& wish) {
  Frame frame;
  frame.view = wish.view;
  frame.number = wish.number;
  try {
    if (wish.original != _seen.original || wish.view != _seen.view) {
      _see(wish.view);
      _seen.original = wish.original;
    }
    frame.plain = frame.lit = _seen.plain;
    frame.shownPlain = frame.shownLit = _seen.shownPlain;
    if (wish.recipe.isLit()) {
      const VImage lit = limn::LitImage(_seen.planes, _settings(wish));
      frame.lit =
          Drawn(lit.format() == VIPS_FORMAT_UCHAR ? lit : limn::InBytes(lit), wish.view.part);
      frame.shownLit = OnScreen(frame.lit, _seen.toScreen);
    }
    if (wish.marksEnds)
      MarkEnds(frame.lit, frame.shownLit);
  } catch (...) {
    frame.problem = QString::fromStdString(
        limn::CaughtLibraryFailure(limn::ExitCode::Refused, _document.original().file).what());
  }
  return frame;
}

void CanvasLighting::_see(const View& view) {
  _seen = {};
  _kept = nullptr;
  Original& original = _document.original();
  const VImage bytes = original.levels().at(view.size);
  if (view.size == original.size()) {
    _seen.planes = limn::PlanesOf(original.photograph);
    _seen.plain = Drawn(bytes, view.part);
  } else {
    _seen.planes = Made(bytes, view);
    _seen.plain = Drawn(_seen.planes, view.part);
  }
  _seen.toScreen = ToScreen(original.photograph.metadata);
  _seen.shownPlain = OnScreen(_seen.plain, _seen.toScreen);
  _seen.view = view;
}

// Makes the recipe's relief one of the channels, or of the planes.
void CanvasLighting::_setRelief(const Recipe& recipe, foo& parameters,
                                limn::LitSettings& settings) {
  Original& original = _document.original();
  LM_height_source source;
  if (recipe.lights)
    source = LM_ResolvedSource(recipe.relief, recipe.lights->bumpChannel != 0);
  const bool isNamed = source.kind == LM_height_kind::Style || original.isChannel(source);
  if (source.kind == LM_height_kind::None)
    parameters.bumpChannel = 0;
  else if (source.kind != LM_height_kind::Style)
    parameters.bumpChannel =
        static_cast<int16_t>(isNamed ? source.channel : original.numChannels() + 1);
  const int channel =
      LM_ChannelOrNone(parameters.bumpChannel, original.numChannels() + (isNamed ? 0 : 1));
  const int added = channel - original.photograph.numPlanes - 1;
  if (added < 0)
    return;
  if (_seen.heights.is_null() || source != _seen.source || channel != _seen.channel) {
    const QSize size = _seen.view.size;
    _seen.heights = Made(
        isNamed ? Resized(limn::BandOf(original.channels[static_cast<size_t>(added)], true), size)
                : limn::ShownHeights(original.heights(source), size.width(), size.height()),
        _seen.view);
    _kept = nullptr; // which belongs to other heights
    _seen.source = source;
    _seen.channel = channel;
  }
  // Only the last one is read.
  settings.channels.assign(static_cast<size_t>(added) + 1, _seen.heights);
}

limn::LitSettings CanvasLighting::_settings(const FrameWish& wish) {
  Original& original = _document.original();
  const QSize full = original.size();
  const QSize size = wish.view.size;
  const QRect area =
      wish.selection.area.isEmpty() ? QRect(QPoint(0, 0), full) : wish.selection.area;
  const auto parameters = std::make_shared<foo>();
  if (wish.recipe.block != nullptr)
    *parameters = *wish.recipe.block;
  else if (!LM_ParametersFromStyle(*wish.recipe.lights, area.width(), area.height(),
                                   original.numChannels(), parameters.get()))
    throw limn::Failure(limn::ExitCode::BadInput, "the style holds no light");
  limn::LitSettings settings{};
  settings.area = Reduced(area, full, size);
  _setRelief(wish.recipe, *parameters, settings);
  limn::FitRelief(*parameters, size.width(), full.width());
  settings.parameters = parameters;
  settings.kept = _keep(settings);
  const QImage& mask = wish.selection.mask;
  if (mask.isNull())
    return settings;
  if (_seen.mask.is_null() || mask.cacheKey() != _seen.maskKey) {
    _seen.mask = Made(Resized(BandOf(mask), size), wish.view);
    _seen.maskKey = mask.cacheKey();
  }
  settings.mask = _seen.mask;
  return settings;
}

// The sums of the frame before, when it was lit by the same lights and all of it was seen; else
// none. They are made in the second such frame, and go when a light moves.
LM_kept_sums* CanvasLighting::_keep(const limn::LitSettings& settings) {
  const QSize size = _seen.view.size;
  const LM_rect area = {settings.area->y, settings.area->x,
                        settings.area->y + settings.area->height,
                        settings.area->x + settings.area->width};
  const bool isSame = _kept != nullptr && std::memcmp(&_kept->job.area, &area, sizeof area) == 0 &&
                      settings.parameters->bumpChannel == _kept->job.params.bumpChannel &&
                      LM_ChangeSurface(*settings.parameters, _kept->job);
  const bool isFlat = settings.parameters->bumpChannel == 0;
  if (!isSame) {
    _kept = std::make_unique<Kept>();
    if (LM_PrepareRender(*settings.parameters, area, size.width(), size.height(), LM_BestKernels(),
                         _kept->job) != LM_render_result::Done)
      _kept = nullptr;
    return nullptr;
  }
  if (_kept->sums.sums == nullptr && _seen.view.part.size() == size &&
      LM_KeptBytes(_kept->job, !isFlat) <= MOST_KEPT)
    LM_StartKeeping(_kept->job, !isFlat, _kept->sums);
  return &_kept->sums;
}

} // namespace editor
