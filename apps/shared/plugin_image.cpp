#include "plugin_image.h"

#include "LM_style_lighting.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

namespace limn {

void RowGate::Open(int bottom) {
  const std::lock_guard<std::mutex> hold(_lock);
  _bottom = std::max(_bottom, bottom);
  _changed.notify_all();
}

void RowGate::Close() {
  const std::lock_guard<std::mutex> hold(_lock);
  _isClosed = true;
  _changed.notify_all();
}

bool RowGate::Wait(int bottom) {
  std::unique_lock<std::mutex> hold(_lock);
  _changed.wait(hold, [&] { return _bottom >= bottom || _isClosed; });
  return _bottom >= bottom;
}

PluginImage::PluginImage(const CVPlugin& plugin, const LM_style& style, Surroundings surroundings,
                         const vips::VImage& planes, const std::string& file,
                         std::shared_ptr<std::atomic<bool>> hasSourceFailed)
    : _planes(planes), _file(file), _surroundings(std::move(surroundings)),
      _area(AreaOf(_surroundings, planes.width(), planes.height(), file)),
      _hasSourceFailed(std::move(hasSourceFailed)) {
  CheckRun(_document.create(planes.width(), planes.height(), planes.bands()), file);
  AddSurroundings(_document, _surroundings, file);
  std::shared_ptr<const foo> parameters =
      MakeParameters(style, _area, _document.channelCount(), file);
  try {
    _decoder = std::jthread([this] { _Decode(); });
    _runner = std::jthread([this, plugin, parameters] { _Run(plugin, *parameters); });
  } catch (const std::system_error&) { // no room for another thread
    _isStopped = true;
    throw std::bad_alloc();
  }
}

PluginImage::~PluginImage() {
  _isStopped = true;
  _decoded.Close();
  _finished.Close();
}

void PluginImage::_Decode() {
  const auto store = [](VipsRegion* region, VipsRect* rect, void* image) {
    auto& self = *static_cast<PluginImage*>(image);
    const auto rows = self._document.channel(0);
    for (int y = rect->top; y < rect->top + rect->height; ++y)
      std::memcpy(rows.data + static_cast<size_t>(y) * rows.rowStride,
                  VIPS_REGION_ADDR(region, 0, y), rows.rowStride);
    self._decoded.Open(rect->top + rect->height);
    return self._isStopped ? -1 : 0;
  };
  if (vips_sink_disc(_planes.get_image(), store, this) != 0 && !_isStopped)
    *_hasSourceFailed = true;
  _decoded.Close();
  vips_thread_shutdown();
}

void PluginImage::_Run(const CVPlugin& plugin, const foo& parameters) {
  CVRunOptions options;
  options.cancelled = [this] { return _isStopped.load(); };
  options.passing.needRows = [this](int bottom) { return _decoded.Wait(bottom); };
  options.passing.finishRows = [this](int bottom, const std::shared_ptr<const CVBuffer>& rows) {
    if (_lit == nullptr)
      _lit = rows;
    _finished.Open(bottom);
  };
  CVResult result = CVGuarded("the filter's run", [&] {
    CVFilterSession session(plugin);
    CVResult given = session.setParameters(&parameters, sizeof parameters);
    return given.ok() ? session.run(_document, _area, options) : given;
  });
  if (!result.ok() && !_isStopped && !*_hasSourceFailed) {
    const std::lock_guard<std::mutex> hold(_lock);
    _failure = std::move(result);
    *_hasSourceFailed = true;
  }
  _finished.Close();
}

// The rows of the filter area, over what the image has there.
void PluginImage::_CopyLit(VipsRegion* wanted, const VipsRect& part) {
  const auto step = static_cast<size_t>(_document.basePlanes());
  const size_t rowStride = static_cast<size_t>(_area.right - _area.left) * step;
  const uint8_t* row = _lit->data() + static_cast<size_t>(part.top - _area.top) * rowStride +
                       static_cast<size_t>(part.left - _area.left) * step;
  for (int y = part.top; y < part.top + part.height; ++y, row += rowStride)
    std::memcpy(VIPS_REGION_ADDR(wanted, part.left, y), row,
                static_cast<size_t>(part.width) * step);
}

bool PluginImage::_GiveRows(VipsRegion* wanted) {
  const VipsRect& rect = wanted->valid;
  const VipsRect area = {_area.left, _area.top, _area.right - _area.left, _area.bottom - _area.top};
  VipsRect part;
  vips_rect_intersectrect(&rect, &area, &part);
  if (!_decoded.Wait(rect.top + rect.height))
    return false;
  if (part.width != rect.width || part.height != rect.height) {
    const auto rows = std::as_const(_document).channel(0);
    for (int y = rect.top; y < rect.top + rect.height; ++y)
      std::memcpy(VIPS_REGION_ADDR(wanted, rect.left, y),
                  rows.data + static_cast<size_t>(y) * rows.rowStride +
                      static_cast<size_t>(rect.left) * rows.pixelStep,
                  VIPS_REGION_SIZEOF_LINE(wanted));
  }
  if (vips_rect_isempty(&part))
    return true;
  if (!_finished.Wait(part.top + part.height))
    return false;
  _CopyLit(wanted, part);
  return true;
}

vips::VImage PluginImage::Lit() {
  const auto generate = [](VipsRegion* wanted, void*, void*, void* image, gboolean*) {
    return static_cast<PluginImage*>(image)->_GiveRows(wanted) ? 0 : -1;
  };
  VipsImage* const output = vips_image_new();
  vips::VImage lit(output);
  if (vips_image_pipelinev(output, VIPS_DEMAND_STYLE_THINSTRIP, _planes.get_image(), nullptr) !=
          0 ||
      vips_image_generate(output, nullptr, generate, nullptr, nullptr, this) != 0)
    throw vips::VError();
  return lit;
}

void PluginImage::CheckPlugin() {
  const std::lock_guard<std::mutex> hold(_lock);
  CheckRun(_failure, _file);
}

} // namespace limn
