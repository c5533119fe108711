#include "EditorDocument.h"

#include "deep_lighting.h"
#include "deep_photograph.h"
#include "failure.h"

#include <algorithm>
#include <new>
#include <utility>

namespace editor {
namespace {

CVRect ContractRect(const QRect& rect) {
  return {static_cast<int16_t>(rect.y()), static_cast<int16_t>(rect.x()),
          static_cast<int16_t>(rect.y() + rect.height()),
          static_cast<int16_t>(rect.x() + rect.width())};
}

// The bytes of `area` of an image of `width` pixels a row, exchanged with or copied to `bytes`.
template <typename Row>
void ForRows(const QRect& area, int width, size_t pixelBytes, uint8_t* data, Row row) {
  const size_t length = static_cast<size_t>(area.width()) * pixelBytes;
  for (int y = 0; y < area.height(); ++y) {
    const size_t first = static_cast<size_t>(area.y() + y) * static_cast<size_t>(width) +
                         static_cast<size_t>(area.x());
    row(data + first * pixelBytes, static_cast<size_t>(y) * length, length);
  }
}

// A mask as one band, its pixels borrowed.
vips::VImage BandOf(QImage& mask) {
  return vips::VImage::new_from_memory(mask.bits(), static_cast<size_t>(mask.sizeInBytes()),
                                       static_cast<int>(mask.bytesPerLine()), mask.height(), 1,
                                       VIPS_FORMAT_UCHAR)
      .extract_area(0, 0, mask.width(), mask.height());
}

} // namespace

size_t EditorDocument::Step::bytes() const {
  auto sum = static_cast<size_t>(selection.mask.sizeInBytes());
  for (const auto& plane : planes)
    sum += plane.size();
  return sum;
}

void EditorDocument::setImage(OpenedImage image) {
  _image = std::move(image);
  _channels.clear();
  _selection = {};
  _undo.clear();
  _redo.clear();
  _pixelState = _savedState = _lastState = 0;
  _position = ++_lastPosition;
  Q_EMIT opened();
  Q_EMIT selectionChanged();
  Q_EMIT stateChanged();
}

QImage EditorDocument::colours(const QRect& area) const {
  const limn::Photograph& photograph = _image.photograph;
  QImage image(area.size(), QImage::Format_RGB32);
  const auto planes = static_cast<size_t>(photograph.numPlanes);
  for (int y = 0; y < image.height(); ++y) {
    const size_t first = static_cast<size_t>(area.y() + y) * static_cast<size_t>(photograph.width) +
                         static_cast<size_t>(area.x());
    const uint8_t* from = photograph.pixels.data() + first * planes;
    auto* into = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x, from += planes)
      into[x] = qRgb(from[0], from[1], from[2]);
  }
  return image;
}

bool EditorDocument::addChannel(limn::GreyImage channel) {
  if (QSize(channel.width, channel.height) != size())
    return false;
  _channels.push_back(std::move(channel));
  Q_EMIT channelsChanged();
  Q_EMIT stateChanged();
  return true;
}

QStringList EditorDocument::channelNames() const {
  QStringList names;
  // A document names its own channels; it needs no pixels for that.
  CVDocument document;
  if (!isEmpty() && document.create(1, 1, CV_MODE_RGB, _image.photograph.numPlanes).ok())
    for (int channel = 0; channel < document.channelCount(); ++channel)
      names << QString::fromStdString(document.channelName(channel));
  for (const limn::GreyImage& channel : _channels)
    names << QString::fromStdString(limn::ChannelName(channel.file));
  return names;
}

std::vector<std::string> EditorDocument::channelFiles() const {
  std::vector<std::string> files;
  for (const limn::GreyImage& channel : _channels)
    files.push_back(channel.file);
  return files;
}

void EditorDocument::select(Selection selection) {
  selection.area &= bounds();
  if (selection == _selection || isEmpty())
    return;
  Step step = _stepBack({});
  _selection = std::move(selection);
  _record(std::move(step));
  Q_EMIT selectionChanged();
  Q_EMIT stateChanged();
}

QRect EditorDocument::filterArea() const {
  return _selection.area.isEmpty() ? bounds() : _selection.area;
}

std::vector<EditorDocument::Buffer> EditorDocument::_buffers() {
  limn::Photograph& photograph = _image.photograph;
  const auto numPlanes = static_cast<size_t>(photograph.numPlanes);
  std::vector<Buffer> buffers{{photograph.pixels.data(), numPlanes}};
  if (isDeep())
    buffers.push_back({photograph.deep.data(), numPlanes * vips_format_sizeof(photograph.depth)});
  for (limn::GreyImage& channel : _channels)
    buffers.push_back({channel.pixels.data(), 1});
  return buffers;
}

EditorDocument::Step EditorDocument::_stepBack(const QRect& pixelArea) {
  Step step{pixelArea, {}, _pixelState, _selection, _position};
  if (pixelArea.isEmpty())
    return step;
  for (const Buffer& buffer : _buffers()) {
    std::vector<uint8_t> plane(static_cast<size_t>(pixelArea.width()) *
                               static_cast<size_t>(pixelArea.height()) * buffer.pixelBytes);
    ForRows(pixelArea, size().width(), buffer.pixelBytes, buffer.data,
            [&](uint8_t* row, size_t at, size_t length) {
              std::copy_n(row, length, plane.data() + at);
            });
    step.planes.push_back(std::move(plane));
  }
  return step;
}

void EditorDocument::_record(Step step) {
  _redo.clear();
  _position = ++_lastPosition;
  _undo.push_back(std::move(step));
  size_t total = 0;
  for (const Step& kept : _undo)
    total += kept.bytes();
  while (_undo.size() > 1 && total > UNDO_BYTES) {
    total -= _undo.front().bytes();
    _undo.pop_front();
  }
}

void EditorDocument::_exchange(Step& step) {
  std::swap(step.selection, _selection);
  std::swap(step.pixelState, _pixelState);
  std::swap(step.position, _position);
  const std::vector<Buffer> buffers = _buffers();
  // Channels that were added since the step are not in it.
  for (size_t i = 0; i < std::min(buffers.size(), step.planes.size()); ++i)
    ForRows(step.area, size().width(), buffers[i].pixelBytes, buffers[i].data,
            [&](uint8_t* row, size_t at, size_t length) {
              std::swap_ranges(row, row + length, step.planes[i].data() + at);
            });
}

void EditorDocument::_move(std::deque<Step>& from, std::deque<Step>& to) {
  if (from.empty())
    return;
  Step step = std::move(from.back());
  from.pop_back();
  const bool changesPixels = !step.area.isEmpty();
  const QRect area = step.area;
  _exchange(step);
  to.push_back(std::move(step));
  if (changesPixels)
    Q_EMIT pixelsChanged(area);
  Q_EMIT selectionChanged();
  Q_EMIT stateChanged();
}

CVResult EditorDocument::_wrap(CVDocument& document, QImage& mask) {
  limn::Photograph& photograph = _image.photograph;
  const auto width = static_cast<size_t>(photograph.width);
  CVResult result =
      document.wrap(photograph.pixels.data(), width * static_cast<size_t>(photograph.numPlanes),
                    photograph.width, photograph.height, CV_MODE_RGB, photograph.numPlanes);
  for (limn::GreyImage& channel : _channels)
    if (result.ok())
      result = document.wrapChannel(limn::ChannelName(channel.file), channel.pixels.data(), width);
  if (result.ok() && !mask.isNull())
    result = document.wrapMask(mask.bits(), static_cast<size_t>(mask.bytesPerLine()));
  return result;
}

CVResult EditorDocument::_run(const Filter& filter, const QRect& area) {
  QImage mask = _selection.mask;
  CVDocument document;
  const CVResult wrapped = _wrap(document, mask);
  return wrapped.ok() ? filter(document, ContractRect(area)) : wrapped;
}

CVResult EditorDocument::change(const Filter& filter) {
  const QRect area = filterArea();
  CVResult result = CVGuarded("the filter's run", [&]() -> CVResult {
    Step step = _stepBack(area);
    CVResult filtered = _run(filter, area);
    if (filtered.ok()) {
      _pixelState = ++_lastState;
      _record(std::move(step));
    }
    return filtered;
  });
  if (result.ok()) {
    Q_EMIT pixelsChanged(area);
    Q_EMIT stateChanged();
  }
  return result;
}

CVResult EditorDocument::ask(const Filter& filter) {
  return CVGuarded("the filter's run", [&] {
    CVResult result = _run(filter, filterArea());
    if (result.ok()) // and has lit the 8 bits
      _image.photograph.pixels =
          limn::DecodedPixels(limn::InBytes(limn::PlanesOf(_image.photograph)));
    return result;
  });
}

CVResult EditorDocument::light(std::shared_ptr<const foo> parameters,
                               const std::function<bool(double)>& goOn) {
  const QRect area = filterArea();
  const limn_area part{area.x(), area.y(), area.width(), area.height()};
  const CVResult result = CVGuarded("the lighting", [&]() -> CVResult {
    limn::LitSettings settings{};
    settings.parameters = std::move(parameters);
    settings.area = part;
    for (limn::GreyImage& channel : _channels)
      settings.channels.push_back(limn::BandOf(channel, true));
    QImage mask = _selection.mask;
    if (!mask.isNull())
      settings.mask = BandOf(mask);
    try {
      Step step{area, {}, ++_lastState, _selection, _position};
      limn::Photograph lit;
      lit.width = part.width;
      lit.height = part.height;
      lit.numPlanes = _image.photograph.numPlanes;
      lit.depth = _image.photograph.depth;
      lit.deep =
          limn::LitSamples(_image.photograph, settings, part, _image.path.toStdString(), goOn);
      if (lit.deep.empty())
        return {CVOutcome::Cancelled, 0, "cancelled"};
      step.planes.push_back(limn::DecodedPixels(limn::InBytes(limn::PlanesOf(lit))));
      step.planes.push_back(std::move(lit.deep));
      _exchange(step);
      _record(std::move(step));
      return {};
    } catch (const limn::Failure& failure) {
      return {CVOutcome::Failed, 0, failure.what()};
    }
  });
  if (result.ok()) {
    Q_EMIT pixelsChanged(area);
    Q_EMIT stateChanged();
  }
  return result;
}

void EditorDocument::noteSaved(const QString& path) {
  _image.path = path;
  _image.mayBeReplaced = true;
  _savedState = _pixelState;
  Q_EMIT stateChanged();
}

} // namespace editor
