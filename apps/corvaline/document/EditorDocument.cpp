#include "EditorDocument.h"

#include "deep_lighting.h"
#include "failure.h"
#include "lighting.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace editor {
namespace {

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

} // namespace

size_t EditorDocument::Step::bytes() const {
  size_t sum = sizeof *this + mask.bytes();
  for (const auto& plane : planes)
    sum += plane.size();
  return sum;
}

void EditorDocument::setImage(OpenedImage image) {
  {
    const std::unique_lock lock(_lock);
    _path = image.path;
    _originalPath = image.original;
    _mayBeReplaced = image.mayBeReplaced;
    _present = _saved = {};
    if (!image.lights.areSaved)
      _present.recipe = ++_lastNumber;
    _isOverwritten = false;
    _notePixels();
    _original.take(std::move(image.photograph), std::move(image.halves));
    _original.channels = std::move(image.lights.channels);
  }
  _digests.forget();
  if (hasOriginalFile())
    _digests.note(_original.file);
  for (const limn::GreyImage& channel : _original.channels)
    _digests.note(channel.file);
  _selection = std::move(image.lights.selection);
  _recipe = _lastLit = std::move(image.lights.recipe);
  _tried.reset();
  _undo.clear();
  _redo.clear();
  Q_EMIT opened();
  Q_EMIT selectionChanged();
  Q_EMIT recipeChanged();
  Q_EMIT stateChanged();
}

// After every change of the original, with the lock held.
void EditorDocument::_notePixels() {
  const bool isInFile = _present.pixels == 0 && !_isOverwritten;
  _original.file = isInFile ? Encoded(_originalPath) : std::string();
  _original.noteChange();
  ++_originalNumber;
}

bool EditorDocument::addChannel(limn::GreyImage channel) {
  if (QSize(channel.width, channel.height) != size())
    return false;
  {
    const std::unique_lock lock(_lock);
    _digests.note(channel.file);
    _original.channels.push_back(std::move(channel));
    _notePixels();
  }
  Q_EMIT channelsChanged();
  Q_EMIT shownChanged();
  Q_EMIT stateChanged();
  return true;
}

QStringList EditorDocument::channelNames() const {
  QStringList names;
  // A document names its own channels; it needs no pixels for that.
  CVDocument document;
  if (!isEmpty() && document.create(1, 1, photograph().numPlanes).ok())
    for (int channel = 0; channel < document.channelCount(); ++channel)
      names << QString::fromStdString(document.channelName(channel));
  for (const limn::GreyImage& channel : _original.channels)
    names << QString::fromStdString(limn::ChannelName(channel.file));
  return names;
}

QRect EditorDocument::filterArea() const {
  return _selection.area.isEmpty() ? bounds() : _selection.area;
}

void EditorDocument::select(Selection selection) {
  selection.area &= bounds();
  if (selection == _selection || isEmpty())
    return;
  Step step = _stepBack(tr("Selection"), {});
  step.mask = MaskChange(selection.mask, _selection.mask);
  _selection = std::move(selection);
  _present.selection = ++_lastNumber;
  _record(std::move(step));
  Q_EMIT selectionChanged();
  Q_EMIT shownChanged();
  Q_EMIT stateChanged();
}

Recipe EditorDocument::withLights(const LM_style& lights) const {
  Recipe recipe = _recipe;
  recipe.block = nullptr;
  recipe.lights.reset();
  if (lights.lightsRead > 0)
    recipe.lights = InWorldUnit(lights);
  return recipe;
}

Recipe EditorDocument::withoutLights() const {
  Recipe recipe;
  recipe.relief = _recipe.relief;
  return recipe;
}

void EditorDocument::tryLights(const LM_style& lights) {
  if (isEmpty())
    return;
  _tried = withLights(lights);
  Q_EMIT shownChanged();
}

void EditorDocument::stopTrying() {
  if (!_tried)
    return;
  _tried.reset();
  Q_EMIT shownChanged();
}

void EditorDocument::keep(Recipe recipe, const QString& step) {
  if (isEmpty())
    return;
  const bool hasSource = recipe.relief == _recipe.relief;
  Step back = _stepBack(step, {});
  _tried.reset();
  _recipe = std::move(recipe);
  if (_recipe.isLit())
    _lastLit = _recipe;
  _present.recipe = ++_lastNumber;
  _record(std::move(back));
  Q_EMIT recipeChanged();
  if (!hasSource)
    Q_EMIT reliefChanged();
  Q_EMIT shownChanged();
  Q_EMIT stateChanged();
}

vips::VImage EditorDocument::litPlanes() {
  return _recipe.isLit() ? _original.lit(_recipe, _selection)
                         : limn::PlanesOf(_original.photograph);
}

std::vector<EditorDocument::Buffer> EditorDocument::_buffers() {
  limn::Photograph& photograph = _original.photograph;
  const auto numPlanes = static_cast<size_t>(photograph.numPlanes);
  std::vector<Buffer> buffers{{photograph.pixels.data(), numPlanes}};
  if (isDeep())
    buffers.push_back({photograph.deep.data(), numPlanes * vips_format_sizeof(photograph.depth)});
  for (limn::GreyImage& channel : _original.channels)
    buffers.push_back({channel.pixels.data(), 1});
  return buffers;
}

EditorDocument::Step EditorDocument::_stepBack(const QString& name, const QRect& pixelArea) {
  Step step{name, _present, _recipe, _selection.area, {}, pixelArea, {}};
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

size_t EditorDocument::undoBytes() const {
  size_t total = 0;
  for (const Step& kept : _undo)
    total += kept.bytes();
  return total;
}

void EditorDocument::_record(Step step) {
  _redo.clear();
  _undo.push_back(std::move(step));
  for (size_t total = undoBytes(); _undo.size() > 1 && total > UNDO_BYTES;) {
    total -= _undo.front().bytes();
    _undo.pop_front();
  }
}

void EditorDocument::_exchange(Step& step) {
  const QImage mask = step.mask.apply(_selection.mask);
  step.mask = MaskChange(mask, _selection.mask);
  _selection.mask = mask;
  std::swap(step.area, _selection.area);
  std::swap(step.recipe, _recipe);
  std::swap(step.content, _present);
  const std::vector<Buffer> buffers = _buffers();
  // Channels that were added since the step are not in it.
  for (size_t i = 0; i < std::min(buffers.size(), step.planes.size()); ++i)
    ForRows(step.pixelArea, size().width(), buffers[i].pixelBytes, buffers[i].data,
            [&](uint8_t* row, size_t at, size_t length) {
              std::swap_ranges(row, row + length, step.planes[i].data() + at);
            });
}

void EditorDocument::_move(std::deque<Step>& from, std::deque<Step>& to) {
  if (from.empty())
    return;
  Step step = std::move(from.back());
  from.pop_back();
  _tried.reset();
  const bool changesPixels = !step.pixelArea.isEmpty();
  const bool hasSource = step.recipe.relief == _recipe.relief;
  {
    std::unique_lock lock(_lock, std::defer_lock);
    if (changesPixels)
      lock.lock();
    _exchange(step);
    if (changesPixels)
      _notePixels();
  }
  to.push_back(std::move(step));
  if (changesPixels)
    Q_EMIT pixelsChanged();
  Q_EMIT selectionChanged();
  Q_EMIT recipeChanged();
  if (!hasSource)
    Q_EMIT reliefChanged();
  Q_EMIT shownChanged();
  Q_EMIT stateChanged();
}

// Puts the filter area's pixels in the place of the original's.
CVResult EditorDocument::_light(const GoOn& goOn) {
  if (!_recipe.isLit())
    return {};
  const QRect area = filterArea();
  limn::Photograph lit;
  lit.width = area.width();
  lit.height = area.height();
  lit.numPlanes = photograph().numPlanes;
  lit.depth = photograph().depth;
  std::vector<uint8_t> samples = limn::LitSamples(_original.lit(_recipe, _selection),
                                                  {area.x(), area.y(), area.width(), area.height()},
                                                  Encoded(_originalPath), goOn);
  if (samples.empty())
    return {CVOutcome::Cancelled, 0, "cancelled"};
  std::vector<std::vector<uint8_t>> planes;
  if (isDeep()) {
    lit.deep = std::move(samples);
    planes.push_back(limn::DecodedPixels(limn::InBytes(limn::PlanesOf(lit))));
    planes.push_back(std::move(lit.deep));
  } else {
    planes.push_back(std::move(samples));
  }
  const std::vector<Buffer> buffers = _buffers();
  for (size_t i = 0; i < planes.size(); ++i)
    ForRows(area, size().width(), buffers[i].pixelBytes, buffers[i].data,
            [&](uint8_t* row, size_t at, size_t length) {
              std::copy_n(planes[i].data() + at, length, row);
            });
  return {};
}

// Runs `change` on the area's pixels as one step; when it fails nothing has changed.
CVResult EditorDocument::_changePixels(const QString& name,
                                       const std::function<CVResult()>& change) {
  const QRect area = filterArea();
  CVResult result = CVGuarded("the picture's pixels", [&]() -> CVResult {
    const std::unique_lock lock(_lock);
    Step step = _stepBack(name, area);
    CVResult changed = CVGuarded("the picture's pixels", [&]() -> CVResult {
      try {
        return change();
      } catch (const limn::Failure& failure) {
        return {CVOutcome::Failed, 0, failure.what()};
      }
    });
    if (!changed.ok()) {
      _exchange(step);
      return changed;
    }
    _present.pixels = ++_lastNumber;
    _present.recipe = _lastNumber;
    _notePixels();
    _record(std::move(step));
    return changed;
  });
  if (!result.ok())
    return result;
  _tried.reset();
  Q_EMIT pixelsChanged();
  Q_EMIT recipeChanged();
  Q_EMIT shownChanged();
  Q_EMIT stateChanged();
  return result;
}

std::optional<limn::Recipe> EditorDocument::travellingRecipe() {
  if (!_recipe.lights)
    return std::nullopt;
  limn::Recipe recipe{};
  recipe.style = *_recipe.lights;
  recipe.relief = LM_ResolvedSource(_recipe.relief, recipe.style.bumpChannel > 0);
  recipe.bits = static_cast<int>(8 * vips_format_sizeof(photograph().depth));
  if (const QRect& area = _selection.area; !area.isEmpty())
    recipe.area = limn_area{area.x(), area.y(), area.width(), area.height()};
  if (hasOriginalFile())
    recipe.original = _digests.of(_original.file);
  if (!_selection.mask.isNull())
    recipe.mask = limn::RecipeFile{"painted in the editor", ""};
  if (recipe.relief.kind == LM_height_kind::File)
    recipe.heights = _digests.of(recipe.relief.file);
  for (const limn::GreyImage& channel : _original.channels)
    recipe.channels.push_back(_digests.of(channel.file));
  return recipe;
}

CVResult EditorDocument::bake(const QString& step, const GoOn& goOn, const Recipe& next) {
  if (!_recipe.isLit()) {
    if (next.isLit())
      keep(next, step);
    return {};
  }
  const Recipe kept = next.isLit() ? next : withoutLights();
  return _changePixels(step, [&] {
    CVResult lit = _light(goOn);
    _recipe = kept;
    return lit;
  });
}

CVResult EditorDocument::change(const QString& step, const Filter& filter, const GoOn& goOn) {
  return _changePixels(step, [&] {
    CVResult lit = _light(goOn);
    if (!lit.ok())
      return lit;
    _recipe = withoutLights();
    return _run(filter);
  });
}

CVResult EditorDocument::ask(const Filter& filter) {
  return CVGuarded("the filter's dialog", [&] { return _run(filter); });
}

// Lets `filter` see the original's 8 bits, its channels and the selection.
CVResult EditorDocument::_run(const Filter& filter) {
  limn::Photograph& photograph = _original.photograph;
  const QImage& mask = _selection.mask;
  const auto width = static_cast<size_t>(photograph.width);
  CVDocument document;
  CVResult result =
      document.wrap(photograph.pixels.data(), width * static_cast<size_t>(photograph.numPlanes),
                    photograph.width, photograph.height, photograph.numPlanes);
  for (limn::GreyImage& channel : _original.channels)
    if (result.ok())
      result = document.wrapChannel(limn::ChannelName(channel.file), channel.pixels.data(), width);
  if (result.ok() && !mask.isNull())
    result = document.wrapMask(mask.constBits(), static_cast<size_t>(mask.bytesPerLine()));
  const QRect area = filterArea();
  const auto side = [](int value) { return static_cast<int16_t>(value); };
  const CVRect rect = {side(area.y()), side(area.x()), side(area.y() + area.height()),
                       side(area.x() + area.width())};
  return result.ok() ? filter(document, rect) : result;
}

EditorDocument::Content EditorDocument::_content() const {
  // What is selected shows in nothing but light.
  return _recipe.isLit() ? _present : Content{_present.pixels, 0, 0};
}

void EditorDocument::noteSaved(const QString& path) {
  const bool overwrites = QFileInfo(path) == QFileInfo(_originalPath);
  _path = path;
  _mayBeReplaced = true;
  _saved = _content();
  if (overwrites && (_saved.pixels != 0 || _recipe.isLit())) {
    const std::unique_lock lock(_lock);
    _isOverwritten = true;
    _original.file.clear();
  }
  Q_EMIT stateChanged();
}

void EditorDocument::noteKept() {
  _saved = _content();
  Q_EMIT stateChanged();
}

} // namespace editor
