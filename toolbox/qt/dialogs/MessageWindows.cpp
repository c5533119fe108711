#include "MessageWindows.h"

#include "Cursors.h"
#include "DialogWindow.h"
#include "MacDialogs.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace {

QMessageBox* BuildMessage(const TB_Message& message, QWidget* owner) {
  auto* box = new QMessageBox(owner);
  box->setIcon(message.kind == "stop" ? QMessageBox::Critical : QMessageBox::Information);
  box->setWindowTitle(owner != nullptr ? owner->windowTitle()
                                       : QGuiApplication::applicationDisplayName());
  box->setTextFormat(Qt::PlainText);
  box->setText(QString::fromStdString(message.text));
  box->setInformativeText(QString::fromStdString(message.detail));
  for (const std::string& button : message.buttons)
    box->addButton(QString::fromStdString(button), QMessageBox::AcceptRole);
  return box;
}

int16_t ShowMessage(const TB_Message& message, void*, ModalFilterUPP) {
  if (!TB_HasDesktop())
    return 1;
  InitCursor();
  QWidget* owner = DialogWindow::Of(FrontWindow());
  const QPointer<QMessageBox> box =
      BuildMessage(message, owner != nullptr ? owner : QApplication::activeWindow());
  const QList<QAbstractButton*> buttons = box->buttons();
  if (!buttons.isEmpty()) {
    box->setDefaultButton(static_cast<QPushButton*>(buttons.first()));
    box->setEscapeButton(buttons.first());
  }
  box->exec();
  // The owner may have taken the box with it, when the program ended meanwhile.
  const auto chosen = box != nullptr ? buttons.indexOf(box->clickedButton()) : 0;
  delete box.data();
  return static_cast<int16_t>(chosen > 0 ? chosen + 1 : 1);
}

} // namespace

void InstallMessageWindows() {
  TB_SetAlertPresenter(ShowMessage);
  TB_SetAboutPresenter(ShowMessage);
}
