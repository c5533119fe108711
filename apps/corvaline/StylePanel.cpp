#include "StylePanel.h"

#include "EditorTexts.h"

#include "style_source.h"
#include "thumbnail.h"

#include <QIcon>
#include <QKeyEvent>
#include <QPixmap>
#include <QStringList>
#include <QStyle>

#include <utility>

namespace editor {
namespace {

constexpr int PICTURE = 132; // the longer side, in logical pixels
constexpr int SPACE = 8;
constexpr int DELAY = 120; // in milliseconds: a drag changes the selection often

bool IsLetter(const QKeyEvent& event) {
  const QString text = event.text();
  return !text.isEmpty() && text[0].isPrint() && !text[0].isSpace();
}

} // namespace

StyleList::StyleList(QWidget* parent) : QListWidget(parent) {
  setViewMode(QListView::IconMode);
  setMovement(QListView::Static);
  setResizeMode(QListView::Adjust);
  setUniformItemSizes(true);
  setTextElideMode(Qt::ElideRight);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setViewportMargins(SPACE / 2, SPACE / 2, 0, 0);
  setAccessibleName(tr("Styles"));
  connect(this, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { Q_EMIT chosen(row(item)); });
}

QSize StyleList::sizeHint() const {
  const int edges = 2 * frameWidth() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  return {2 * (PICTURE + SPACE) + SPACE + edges, 3 * PICTURE};
}

void StyleList::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter && currentItem() != nullptr)
    Q_EMIT chosen(currentRow());
  else if (IsLetter(*event))
    event->ignore();
  else
    QListWidget::keyPressEvent(event);
}

StylePanel::StylePanel(const EditorDocument& document, QWidget* parent)
    : QDockWidget(tr("Styles"), parent), _document(document), _list(new StyleList(this)),
      _thumbnails(new StyleThumbnails(this)) {
  setObjectName("styles");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  setFeatures(DockWidgetClosable | DockWidgetMovable);
  setWidget(_list);
  _delay.setSingleShot(true);
  _delay.setInterval(DELAY);
  connect(&_delay, &QTimer::timeout, this, &StylePanel::_refresh);
  connect(&_document, &EditorDocument::opened, &_delay, qOverload<>(&QTimer::start));
  connect(&_document, &EditorDocument::pixelsChanged, &_delay, qOverload<>(&QTimer::start));
  connect(&_document, &EditorDocument::selectionChanged, &_delay, qOverload<>(&QTimer::start));
  connect(&_document, &EditorDocument::channelsChanged, this, [this] {
    _pictured = _tried = NEVER;
    _delay.start();
  });
  connect(_thumbnails, &StyleThumbnails::made, this, &StylePanel::_setPicture);
  connect(_thumbnails, &StyleThumbnails::finished, this, [this] { _areMade = true; });
  connect(_list, &StyleList::chosen, this, [this](int row) {
    // Held by value: the image changes below, and with it the list.
    const LM_style style = _styles[static_cast<size_t>(row)];
    Q_EMIT chosen(style);
  });
}

bool StylePanel::_isPictured() const {
  return _document.position() == _pictured || isTried();
}

bool StylePanel::isUpToDate() const {
  return _areMade && _isPictured();
}

void StylePanel::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  _delay.start();
}

// Rows stay as they are while the library has the same names.
void StylePanel::_readStyles() {
  QStringList names;
  _styles.clear();
  for (const LM_listed_style& listed : limn::AllStyles())
    if (listed.loads) {
      names << QString::fromStdString(listed.name);
      _styles.push_back(listed.style);
    }
  bool isSame = _list->count() == names.size();
  for (int row = 0; isSame && row < _list->count(); ++row)
    isSame = _list->item(row)->text() == names[row];
  if (isSame)
    return;
  _list->clear();
  for (const QString& name : std::as_const(names)) {
    auto* item = new QListWidgetItem(name, _list);
    item->setToolTip(ToolTipOf(name));
  }
}

void StylePanel::_refresh() {
  if (!isVisible() || _isPictured())
    return;
  _thumbnails->cancel();
  _areMade = false;
  if (_document.isEmpty()) {
    _list->clear();
    return;
  }
  _pictured = _document.position();
  _tried = NEVER;
  const auto side = static_cast<int>(PICTURE * devicePixelRatioF());
  limn::ReducedPhotograph photograph = _document.reduced(_document.filterArea(), side);
  _readStyles();
  const QSize shown = QSize(photograph.width, photograph.height) / devicePixelRatioF();
  _list->setIconSize(shown);
  _list->setGridSize({PICTURE + SPACE, shown.height() + fontMetrics().height() + 2 * SPACE});
  const QImage unlit = ThumbnailImage(photograph, limn::UnlitThumbnail(photograph));
  for (int row = 0; row < _list->count(); ++row)
    if (_list->item(row)->icon().isNull())
      _setPicture(row, unlit);
  _thumbnails->make(std::move(photograph), _styles);
}

void StylePanel::_setPicture(int row, const QImage& picture) {
  QPixmap pixmap = QPixmap::fromImage(picture);
  pixmap.setDevicePixelRatio(devicePixelRatioF());
  // A selected one keeps its colours: they are what is to be seen.
  QIcon icon(pixmap);
  icon.addPixmap(pixmap, QIcon::Selected);
  if (QListWidgetItem* item = _list->item(row))
    item->setIcon(icon);
}

} // namespace editor
