// Lighting the image with a style, without the dialog.
#include "MainWindow.h"

#include "EditorTexts.h"

#include "failure.h"
#include "style_source.h"

#include "LM_parameters.h"
#include "LM_style_lighting.h"

#include <QFile>
#include <QMenu>
#include <QSettings>

namespace editor {

static constexpr const char* PANEL_SETTING = "stylePanel";

void MainWindow::_makeStylePanel(QMenu* menu) {
  _styles = new StylePanel(_document, this);
  addDockWidget(Qt::RightDockWidgetArea, _styles);
  _styles->hide();
  QAction* toggle = _styles->toggleViewAction();
  toggle->setText(tr("&Styles"));
  toggle->setShortcut(Qt::Key_F9);
  toggle->setStatusTip(tr("Show what each style makes of the image; a click lights it"));
  menu->addAction(toggle);
  connect(toggle, &QAction::toggled, this, [this](bool isShown) {
    if (!isVisible())
      return;
    QSettings().setValue(PANEL_SETTING, isShown);
    if (isShown)
      _styles->list().setFocus();
    else
      _canvas->setFocus();
  });
  connect(_styles, &StylePanel::chosen, this, &MainWindow::_tryStyle);
}

void MainWindow::restorePanels() {
  _styles->setVisible(QSettings().value(PANEL_SETTING, true).toBool());
  _restoreLights();
}

// Another style in place of the one before, for who looks for one.
void MainWindow::_tryStyle(const LM_style& style) {
  if (_filter.isRunning())
    return;
  const bool replaces = _styles->isTried();
  if (replaces)
    _document.undo();
  if (applyStyle(style))
    _styles->noteTried();
  else if (replaces)
    _document.redo();
}

bool MainWindow::applyStyle(const LM_style& style) {
  if (_document.isEmpty() || _filter.isRunning() || !_filter.isLoaded())
    return false;
  const QSize area = _document.filterArea().size();
  const auto parameters = std::make_unique<foo>();
  const auto channels = static_cast<int>(_document.channelNames().size());
  if (!LM_ParametersFromStyle(style, area.width(), area.height(), channels, parameters.get()) ||
      !_filter.setParameters(parameters.get(), sizeof *parameters).ok()) {
    _complain(tr("The image could not be lit."), tr("There is not enough memory."));
    return false;
  }
  return runFilter(CVDialog::No);
}

bool MainWindow::applyStyle(const QString& name) {
  limn::NamedStyle named{};
  try {
    named = limn::FindStyle(QFile::encodeName(name).toStdString());
  } catch (const limn::Failure& failure) {
    _complain(tr("The style could not be read."),
              TranslatedProblem(QString::fromStdString(failure.what())));
    return false;
  }
  return applyStyle(named.style);
}

} // namespace editor
