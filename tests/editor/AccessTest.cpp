// The window for who cannot see it, and its pages.
#include "EditorRun.h"

#include "HelpWindow.h"

#include <QAccessible>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QUrl>

namespace {

// What belongs to a larger control, which has the name.
bool IsPart(const QWidget& widget) {
  const QWidget* const parent = widget.parentWidget();
  return widget.objectName().startsWith("qt_") || qobject_cast<const QScrollBar*>(&widget) ||
         qobject_cast<const QAbstractSpinBox*>(parent) || qobject_cast<const QLineEdit*>(parent) ||
         qobject_cast<const QComboBox*>(parent);
}

bool HasValue(QAccessible::Role role) {
  return role == QAccessible::Slider || role == QAccessible::SpinBox ||
         role == QAccessible::ComboBox;
}

} // namespace

TEST_F(EditorRun, EveryControlTellsItsNameRoleAndValue) {
  window->resize(1100, 760);
  open(makePicture("picture.png"));
  ASSERT_TRUE(window->applyStyle("Evening Lamp"));
  window->restorePanels();
  ASSERT_TRUE(QTest::qWaitFor([&] { return window->styles().isUpToDate(); }, 20000));
  int count = 0;
  for (QWidget* widget : window->findChildren<QWidget*>()) {
    const bool isControl =
        widget->focusPolicy() != Qt::NoFocus || qobject_cast<QAbstractButton*>(widget) != nullptr;
    if (!widget->isVisible() || !isControl || IsPart(*widget) || widget->focusProxy() != nullptr)
      continue;
    ++count;
    QAccessibleInterface* item = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(item, nullptr);
    const std::string told = std::string(widget->metaObject()->className()) + " in " +
                             widget->parentWidget()->metaObject()->className() + " \"" +
                             item->text(QAccessible::Name).toStdString() + '"';
    EXPECT_FALSE(item->text(QAccessible::Name).isEmpty()) << told;
    EXPECT_NE(item->role(), QAccessible::NoRole) << told;
    if (HasValue(item->role())) {
      EXPECT_FALSE(item->text(QAccessible::Value).isEmpty()) << told;
    }
    for (int i = 0; item->role() == QAccessible::List && i < item->childCount(); ++i)
      EXPECT_FALSE(item->child(i)->text(QAccessible::Name).isEmpty()) << told << i;
  }
  EXPECT_GT(count, 60);
  for (const QMenu* menu : window->findChildren<QMenu*>())
    for (const QAction* action : menu->actions())
      EXPECT_TRUE(action->isSeparator() || !action->text().isEmpty())
          << menu->title().toStdString();
  window->document().noteSaved({});
}

TEST_F(EditorRun, HelpShowsThePages) {
  window->showHelp();
  auto* pages = window->findChild<editor::HelpWindow*>();
  ASSERT_NE(pages, nullptr);
  QTextBrowser& browser = *pages->findChild<QTextBrowser*>();
  EXPECT_TRUE(browser.toPlainText().contains("Ten minutes with Limn"));
  browser.setSource(QUrl("tutorial.md"));
  EXPECT_TRUE(browser.toPlainText().contains("Put lights on it"));
  EXPECT_FALSE(browser.toPlainText().contains("<!--"));
  EXPECT_FALSE(browser.toPlainText().contains("not run"));
  window->showHelp();
  EXPECT_EQ(window->findChildren<editor::HelpWindow*>().size(), 1);
}
