#include "CanvasLighting.h"

#include "deep_lighting.h"
#include "failure.h"
#include "halving.h"
#include "height_image.h"
#include "image_library.h"
#include "thumbnail.h"

#include "LM_style_lighting.h"

#include <algorithm>
#include <bit>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace editor {

using vips::VImage;

namespace {

constexpr int COLOURS = 3;
constexpr double OPAQUE = 255;

// Colours of 8 bits with a fourth byte after them, as the window's pictures have them.
VImage Opaque(const VImage& planes) {
  return planes.extract_band(0, VImage::option()->set("n", COLOURS)).bandjoin(OPAQUE);
}

// A picture of even sides.
QImage Halved(const QImage& image) {
  QImage half(image.size() / 2, image.format());
  for (int y = 0; y < half.height(); ++y)
    limn::HalveRow(image.constScanLine(2 * y), image.constScanLine(2 * y + 1),
                   static_cast<size_t>(image.width()), sizeof(QRgb), half.scanLine(y));
  return half;
}

// The pixels of a picture that threads draw together.
struct Drawing {
  QRgb* pixels;
  int width;
};
// Draws those of a region, of 8 bits and with a fourth byte, while they are still in the cache.
int DrawPart(VipsRegion* colours, void*, void*, void* into, gboolean*) {
  const Drawing& drawing = *static_cast<const Drawing*>(into);
  const VipsRect& part = colours->valid;
  for (int y = part.top; y < part.top + part.height; ++y) {
    const VipsPel* from = VIPS_REGION_ADDR(colours, part.left, y);
    QRgb* const row = drawing.pixels + ptrdiff_t{y} * drawing.width + part.left;
    for (int x = 0; x < part.width; ++x, from += sizeof(QRgb))
      row[x] = qRgb(from[0], from[1], from[2]);
  }
  return 0;
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

// Of the machine's memory, what sums may take while something is dragged.
uint64_t MostKept() {
  constexpr uint64_t MOST = 1 << 30;
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long size = sysconf(_SC_PAGESIZE);
  return pages > 0 && size > 0
             ? std::min(MOST, static_cast<uint64_t>(pages) * static_cast<uint64_t>(size) / 8)
             : MOST / 8;
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

// Small frames are lit at twice the size, as thumbnails are.
Frame CanvasLighting::_make(const FrameWish& wish) {
  const QSize size = wish.view.size;
  const QSize full = _document.original().size();
  if (limn::SamplesEachWay(size.width(), size.height(), full.width(), full.height()) == 1)
    return _makeLit(wish, size == full);
  const QRect& part = wish.view.part;
  FrameWish fine = wish;
  fine.view = {size * 2, QRect(part.topLeft() * 2, part.size() * 2)};
  fine.marksEnds = false;
  Frame frame = _makeLit(fine, false);
  frame.view = wish.view;
  for (QImage* image : {&frame.lit, &frame.plain, &frame.shownLit, &frame.shownPlain})
    *image = Halved(*image);
  if (wish.marksEnds)
    MarkEnds(frame.lit, frame.shownLit);
  return frame;
}

Frame CanvasLighting::_makeLit(const FrameWish& wish, bool isOwnSize) {
  Frame frame;
  frame.view = wish.view;
  frame.number = wish.number;
  try {
    if (wish.original != _seen.original || wish.view != _seen.view) {
      _see(wish.view, isOwnSize);
      _seen.original = wish.original;
    }
    frame.plain = frame.lit = _seen.plain;
    frame.shownPlain = frame.shownLit = _seen.shownPlain;
    if (wish.recipe.isLit()) {
      const VImage lit = limn::LitImage(_seen.planes, _settings(wish));
      frame.lit = _drawn(_seen.isDeep ? Opaque(limn::InBytes(lit)) : lit, wish.view.part);
      frame.shownLit = _onScreen(frame.lit);
    }
    if (wish.marksEnds)
      MarkEnds(frame.lit, frame.shownLit);
  } catch (...) {
    frame.problem = QString::fromStdString(
        limn::CaughtLibraryFailure(limn::ExitCode::Refused, _document.original().file).what());
  }
  return frame;
}

// A picture to be written, in memory that a frame has left, if there is some: the system takes
// longer to hand out new memory than a few lights take to fill it.
QImage CanvasLighting::_unused(QSize size) {
  for (QImage& picture : _pictures) {
    if (!picture.isDetached()) // somebody else shows it, or it is none
      continue;
    QImage image = std::exchange(picture, {});
    if (image.size() == size)
      return image;
  }
  QImage image(size, QImage::Format_RGB32);
  if (image.isNull())
    throw std::bad_alloc();
  return image;
}

QImage CanvasLighting::_noted(QImage image) {
  const auto unused = std::find_if(_pictures.begin(), _pictures.end(),
                                   [](const QImage& picture) { return picture.isNull(); });
  if (unused != _pictures.end())
    *unused = image;
  return image;
}

// The part of opaque colours, as the window draws it.
QImage CanvasLighting::_drawn(const VImage& colours, const QRect& part) {
  QImage image = _unused(part.size());
  const VImage seen = colours.extract_area(part.x(), part.y(), part.width(), part.height());
  Drawing drawing = {reinterpret_cast<QRgb*>(image.bits()), image.width()};
  if (vips_sink(seen.get_image(), vips_start_one, DrawPart, vips_stop_one, seen.get_image(),
                &drawing) != 0)
    throw vips::VError();
  return _noted(std::move(image));
}

QImage CanvasLighting::_onScreen(const QImage& image) {
  const QColorTransform& toScreen = _document.original().toScreen;
  if (toScreen.isIdentity())
    return image;
  QImage shown = _unused(image.size());
  std::copy_n(image.constBits(), image.sizeInBytes(), shown.bits());
  shown.applyColorTransform(toScreen);
  return _noted(std::move(shown));
}

void CanvasLighting::_see(const View& view, bool isOwnSize) {
  _seen = {};
  _forgetSums();
  Original& original = _document.original();
  const VImage bytes = Made(Opaque(original.levels().at(view.size)), view);
  _seen.isDeep = _document.isDeep() && isOwnSize;
  _seen.planes = _seen.isDeep ? limn::PlanesOf(original.photograph) : bytes;
  _seen.plain = _drawn(bytes, view.part);
  _seen.shownPlain = _onScreen(_seen.plain);
  _seen.view = view;
}

// A channel where it is seen, as deep as what is lit.
VImage CanvasLighting::_channel(int number) {
  Original& original = _document.original();
  const int further = number - original.photograph.numPlanes - 1;
  if (further >= 0)
    return Resized(limn::BandOf(original.channels[static_cast<size_t>(further)], true),
                   _seen.view.size);
  const VImage planes = _seen.isDeep ? _seen.planes : original.levels().at(_seen.view.size);
  return planes.extract_band(number - 1);
}

// Makes the recipe's relief one of the colours, or the one channel after the planes.
void CanvasLighting::_setRelief(const Recipe& recipe, foo& parameters,
                                limn::LitSettings& settings) {
  Original& original = _document.original();
  LM_height_source source;
  if (recipe.lights)
    source = LM_ResolvedSource(recipe.relief, recipe.lights->bumpChannel != 0);
  const bool isOwn = source.kind == LM_height_kind::Style || original.isChannel(source);
  const int channel = source.kind == LM_height_kind::Style
                          ? LM_ChannelOrNone(parameters.bumpChannel, original.numChannels())
                          : source.channel;
  parameters.bumpChannel = 0;
  if (source.kind == LM_height_kind::None || (isOwn && channel == 0))
    return;
  if (isOwn && channel <= COLOURS) {
    parameters.bumpChannel = static_cast<int16_t>(channel);
    return;
  }
  if (_seen.heights.is_null() || source != _seen.source || channel != _seen.channel) {
    const QSize size = _seen.view.size;
    _forgetSums();
    _seen.heights =
        Made(isOwn ? _channel(channel)
                   : limn::ShownHeights(original.heights(source), size.width(), size.height()),
             _seen.view);
    _seen.source = source;
    _seen.channel = channel;
  }
  settings.channels = {_seen.heights};
  parameters.bumpChannel = static_cast<int16_t>(_seen.planes.bands() + 1);
}

void CanvasLighting::_forgetSums() {
  _parameters.reset();
  _kept = {};
}

// Whether two blocks that have the same lights have the same surface too.
static bool HasSameSurface(const foo& one, const foo& other) {
  const auto surface = [](const foo& block) {
    const auto& ambient = block.ambient.component;
    return std::tie(block.gloss, block.material, block.exposure, ambient[0], ambient[1],
                    ambient[2]);
  };
  return surface(one) == surface(other);
}

// Where the frame keeps sums, or finds them; null when too much has changed since the last one.
LM_kept_sums* CanvasLighting::_keep(const FrameWish& wish, const limn::LitSettings& settings) {
  constexpr int MOST_MOVED = 2;
  const std::shared_ptr<const foo> before = std::exchange(_parameters, settings.parameters);
  const limn_area area = *settings.area;
  const limn_area areaBefore = std::exchange(_area, area);
  const bool isSame = before != nullptr && before->bumpChannel == _parameters->bumpChannel &&
                      std::tie(area.x, area.y, area.width, area.height) ==
                          std::tie(areaBefore.x, areaBefore.y, areaBefore.width, areaBefore.height);
  const uint32_t changed =
      isSame ? LM_ChangedLights(*before, *_parameters).value_or(LM_ALL_LIGHTS) : LM_ALL_LIGHTS;
  if (!wish.isTrial || _seen.isDeep || std::popcount(changed) > MOST_MOVED) {
    _kept = {};
    return nullptr;
  }
  if (!_kept.IsEmpty() && (changed & _kept.lights) == 0)
    return &_kept;
  if (changed == 0 && HasSameSurface(*before, *_parameters))
    return nullptr; // what is to stand still is not known yet
  const QRect part = wish.view.part & QRect(area.x, area.y, area.width, area.height);
  const LM_rect rect = {part.top(), part.left(), part.bottom() + 1, part.right() + 1};
  const bool relief = _parameters->bumpChannel > 0;
  const LM_kept_form form = LM_TightForm(
      *_parameters, {area.y, area.x, area.y + area.height, area.x + area.width}, relief);
  _kept = {};
  return !part.isEmpty() && LM_KeptBytes(rect, relief, ~changed, form) <= MostKept() &&
                 LM_StartKeeping(rect, relief, ~changed, _kept, form)
             ? &_kept
             : nullptr;
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
  const QRect reduced = Reduced(area, full, size);
  settings.area = limn_area{reduced.x(), reduced.y(), reduced.width(), reduced.height()};
  _setRelief(wish.recipe, *parameters, settings);
  limn::FitRelief(*parameters, size.width(), full.width());
  settings.parameters = parameters;
  settings.kept = _keep(wish, settings);
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

} // namespace editor
