// Light: styles, the filter, and what makes it pixels.
#include "MainWindow.h"

#include "style_source.h"

#include <QElapsedTimer>
#include <QMenu>
#include <QStatusBar>

namespace editor {

static constexpr int UNTOLD = 250; // what takes longer is told, in milliseconds

void MainWindow::_makeStylePanel(QMenu* menu) {
  _styles = new StylePanel(_document, this);
  _addPanel(menu, _styles, Qt::RightDockWidgetArea, tr("&Styles"), Qt::Key_F9,
            tr("Show what each style makes of the image; a click lights it"));
  connect(_styles, &StylePanel::chosen, this, [this](const LM_style& style, const QString& name) {
    if (!_filter.isRunning())
      _document.keepLights(style, tr("Style “%1”").arg(name));
  });
  connect(_styles, &StylePanel::hovered, &_document, &EditorDocument::tryLights);
  connect(_styles, &StylePanel::left, &_document, &EditorDocument::stopTrying);
}

bool MainWindow::runFilter(CVDialog dialog) {
  if (_document.isEmpty() || _filter.isRunning() || !_filter.isLoaded())
    return false;
  _lights->flush();
  const bool bakes = _document.recipe().isLit();
  const int original = _document.originalNumber();
  const CVResult result =
      dialog == CVDialog::Yes ? _filter.run(_document, dialog, tr("Lighting"), this)
      : _filter.isOwn()
          ? _document.bake(tr("Repeat"), _progress(tr("Lighting, %1 %")), _document.lastLit())
          : _filter.run(_document, dialog, tr("Repeat"), this);
  _showState();
  if (result.ok() && bakes && _document.originalNumber() != original)
    statusBar()->showMessage(tr("The light that was there has become pixels"), NOTICE_MILLISECONDS);
  return _isDone(result);
}

bool MainWindow::bake() {
  _lights->flush();
  if (!_document.recipe().isLit() || _filter.isRunning())
    return false;
  const CVResult result = _document.bake(tr("Bake"), _progress(tr("Lighting, %1 %")));
  statusBar()->clearMessage();
  return _isDone(result);
}

EditorDocument::GoOn MainWindow::_progress(const QString& text) {
  QElapsedTimer sinceTold;
  sinceTold.start();
  return [this, text, sinceTold](double share) mutable {
    if (sinceTold.elapsed() >= UNTOLD) {
      sinceTold.restart();
      statusBar()->showMessage(text.arg(static_cast<int>(share * 100)));
      statusBar()->repaint();
    }
    return true;
  };
}

bool MainWindow::_isDone(const CVResult& result) {
  // Who cancelled knows, and who was told by the filter need not be told again.
  if (!result.ok() && result.outcome != CVOutcome::Cancelled &&
      result.outcome != CVOutcome::Stopped)
    _complain(tr("The image could not be lit."), QString::fromStdString(result.message));
  return result.ok();
}

bool MainWindow::applyStyle(const QString& name) {
  if (_document.isEmpty() || _filter.isRunning())
    return false;
  limn::NamedStyle named{};
  if (!_try(tr("The style could not be read."), [&] { named = limn::FindStyle(Encoded(name)); }))
    return false;
  Recipe recipe = _document.withLights(named.style);
  if (named.relief.kind != LM_height_kind::Style)
    recipe.relief = named.relief;
  _document.keep(recipe,
                 tr("Style “%1”").arg(QString::fromStdString(limn::LabelOf(Encoded(name)))));
  return true;
}

} // namespace editor
