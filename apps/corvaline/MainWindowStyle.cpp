// The lights as a style of their own.
#include "MainWindow.h"

#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_json.h"
#include "LM_style_lengths.h"
#include "MacFiles.h"
#include "style_source.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QStatusBar>

namespace editor {
namespace {

constexpr const char* JSON_ENDING = ".json";

// What a style file would lose of the recipe, a part of a sentence each.
QStringList LostInFile(const Recipe& recipe) {
  QStringList lost;
  if (LM_HasFractions(*recipe.lights))
    lost << MainWindow::tr("places and lengths between whole points");
  if (recipe.relief.kind != LM_height_kind::Style)
    lost << MainWindow::tr("the source of the relief's heights");
  return lost;
}

// Where the panel and the dialog look for style files; empty where there is no library.
QString StyleFolder() {
  int16_t volume = 0;
  int32_t folder = 0;
  if (!limn::UseStyleLibrary().isThere || LM_GetStyleFolder(&volume, &folder) == 0)
    return {};
  return QFile::decodeName(TB_PathOf(volume, folder, nullptr).c_str());
}

std::string StyleText(const Recipe& recipe, bool asJson) {
  if (asJson)
    return LM_StyleToJson(*recipe.lights, recipe.relief);
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(*recipe.lights, bytes);
  return {bytes, bytes + size};
}

} // namespace

// False when the user would rather not.
bool MainWindow::_maySaveAsFile(bool& asJson) {
  const QStringList lost = LostInFile(_document.recipe());
  asJson = false;
  if (lost.isEmpty())
    return true;
  QMessageBox box(QMessageBox::Question, "Corvaline",
                  tr("A style file has no room for all of this."), QMessageBox::Cancel, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(tr("Left out: %1. JSON holds them too, and limn takes it as well; the "
                            "panel and the dialog list style files alone.")
                             .arg(lost.join(", ")));
  QPushButton* json = box.addButton(tr("Save &JSON…"), QMessageBox::AcceptRole);
  QPushButton* file = box.addButton(tr("Save Style &File…"), QMessageBox::AcceptRole);
  box.setDefaultButton(json);
  box.exec();
  asJson = box.clickedButton() == json;
  return asJson || box.clickedButton() == file;
}

bool MainWindow::saveStyle(const QString& path) {
  if (!_document.recipe().lights)
    return false;
  const bool isSaved = _try(tr("The style could not be saved."), [&] {
    SaveText(StyleText(_document.recipe(), path.endsWith(JSON_ENDING)), path);
  });
  if (!isSaved)
    return false;
  _styles->readAgain();
  statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()), NOTICE_MILLISECONDS);
  return true;
}

void MainWindow::chooseAndSaveStyle() {
  _lights->flush();
  if (!_document.recipe().lights)
    return _complain(tr("The style could not be saved."),
                     tr("No style lights the image exactly like this."));
  bool asJson = false;
  if (!_maySaveAsFile(asJson))
    return;
  const QString folder = asJson ? _folder() : StyleFolder();
  const QString name = QFileInfo(_document.path()).completeBaseName() + (asJson ? JSON_ENDING : "");
  QFileDialog dialog(this, tr("Save the style as"), folder,
                     asJson ? "JSON (*.json)" : tr("Styles") + " (*)");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  if (asJson)
    dialog.setDefaultSuffix("json");
  dialog.selectFile(name);
  if (dialog.exec() == QDialog::Accepted)
    saveStyle(dialog.selectedFiles().value(0));
}

} // namespace editor
