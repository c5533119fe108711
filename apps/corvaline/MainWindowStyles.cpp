// Lighting the image with a style, without the dialog.
#include "MainWindow.h"

#include "EditorTexts.h"

#include "failure.h"
#include "style_source.h"

#include "LM_parameters.h"
#include "LM_style_settings.h"

#include <QFile>

namespace editor {

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
