#include "HelpWindow.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>

namespace editor {
namespace {

constexpr const char* FIRST_PAGE = "README.md";
constexpr int PICTURE = 680; // the widest, in logical pixels

QString Folder() {
  const QDir own(QCoreApplication::applicationDirPath());
  const QString installed = own.filePath(CORVALINE_PAGES);
  return QDir::cleanPath(QFile::exists(installed) ? installed : own.filePath("../../docs"));
}

// Pictures are made to fit, and notes to the pages' writers are left out.
class Pages : public QTextBrowser {
public:
  using QTextBrowser::QTextBrowser;

protected:
  QVariant loadResource(int type, const QUrl& name) override {
    QVariant found = QTextBrowser::loadResource(type, name);
    if (type == QTextDocument::MarkdownResource) {
      static const QRegularExpression note("<!--.*?-->",
                                           QRegularExpression::DotMatchesEverythingOption);
      return QString::fromUtf8(found.toByteArray()).remove(note);
    }
    if (type != QTextDocument::ImageResource)
      return found;
    QImage picture = QImage::fromData(found.toByteArray());
    const double density = devicePixelRatioF();
    const int width = static_cast<int>(PICTURE * density);
    if (picture.width() > width)
      picture = picture.scaledToWidth(width, Qt::SmoothTransformation);
    picture.setDevicePixelRatio(density);
    return picture;
  }
};

} // namespace

HelpWindow::HelpWindow(QWidget* parent) : QMainWindow(parent, Qt::Window) {
  auto* browser = new Pages(this);
  browser->setOpenExternalLinks(true);
  browser->setAccessibleName(tr("Pages"));
  browser->document()->setDocumentMargin(16);
  setCentralWidget(browser);
  QToolBar* bar = addToolBar(tr("Pages"));
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  QAction* back = bar->addAction(tr("Back"), browser, &QTextBrowser::backward);
  back->setShortcut(QKeySequence::Back);
  back->setEnabled(false);
  connect(browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  bar->addAction(tr("Contents"), browser, &QTextBrowser::home);
  QAction* close = new QAction(this);
  close->setShortcuts({QKeySequence("Ctrl+W"), QKeySequence(Qt::Key_Escape)});
  connect(close, &QAction::triggered, this, &QWidget::close);
  addAction(close);
  setWindowTitle(tr("Pages") + " – Corvaline");
  resize(780, 820);
  browser->setSource(QUrl::fromLocalFile(Folder() + "/" + FIRST_PAGE));
}

} // namespace editor
