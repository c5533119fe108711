#include "StylePanel.h"

#include "EditorTexts.h"

#include "style_source.h"
#include "thumbnail.h"

#include <QIcon>
#include <QKeyEvent>
#include <QPixmap>
#include <QStringList>
#include <QStyle>
#include <QVBoxLayout>

#include <shared_mutex>
#include <stdexcept>
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
  setMouseTracking(true);
  connect(this, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { Q_EMIT chosen(row(item)); });
  connect(this, &QListWidget::itemEntered, this,
          [this](QListWidgetItem* item) { Q_EMIT hovered(row(item)); });
  connect(this, &QAbstractItemView::viewportEntered, this, [this] { Q_EMIT hovered(-1); });
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
  else {
    const int before = currentRow();
    QListWidget::keyPressEvent(event);
    if (currentRow() != before)
      Q_EMIT hovered(currentRow());
  }
}

bool StyleList::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave)
    Q_EMIT hovered(-1);
  return QListWidget::viewportEvent(event);
}

void StyleList::focusOutEvent(QFocusEvent* event) {
  QListWidget::focusOutEvent(event);
  Q_EMIT hovered(-1);
}

StylePanel::StylePanel(EditorDocument& document, QWidget* parent)
    : QDockWidget(tr("Styles"), parent), _document(document), _search(new QLineEdit(this)),
      _list(new StyleList(this)), _thumbnails(new StyleThumbnails(this)) {
  setObjectName("stylePanel");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  setFeatures(DockWidgetClosable | DockWidgetMovable);
  _search->setPlaceholderText(tr("Search"));
  _search->setAccessibleName(tr("Search for a style"));
  _search->setClearButtonEnabled(true);
  auto* content = new QWidget(this);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins({});
  column->setSpacing(SPACE / 2);
  column->addWidget(_search);
  column->addWidget(_list);
  content->setFocusProxy(_list);
  setWidget(content);
  connect(_search, &QLineEdit::textChanged, this, &StylePanel::_filter);
  _delay.setSingleShot(true);
  _delay.setInterval(DELAY);
  connect(&_delay, &QTimer::timeout, this, &StylePanel::_refresh);
  for (const auto change :
       {&EditorDocument::opened, &EditorDocument::pixelsChanged, &EditorDocument::selectionChanged,
        &EditorDocument::channelsChanged, &EditorDocument::reliefChanged})
    connect(&_document, change, this, &StylePanel::readAgain);
  connect(_thumbnails, &StyleThumbnails::made, this, &StylePanel::_setPicture);
  connect(_thumbnails, &StyleThumbnails::finished, this, [this] { _areMade = true; });
  connect(_list, &StyleList::chosen, this, [this](int row) {
    Q_EMIT chosen(_styles[static_cast<size_t>(row)], _list->item(row)->text());
  });
  connect(_list, &StyleList::hovered, this, [this](int row) {
    if (row < 0)
      Q_EMIT left();
    else
      Q_EMIT hovered(_styles[static_cast<size_t>(row)]);
  });
}

void StylePanel::readAgain() {
  _isStale = true;
  _delay.start();
}

void StylePanel::_filter(const QString& words) {
  for (int row = 0; row < _list->count(); ++row)
    _list->setRowHidden(row, !_list->item(row)->text().contains(words, Qt::CaseInsensitive));
}

void StylePanel::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  _delay.start();
}

void StylePanel::hideEvent(QHideEvent* event) {
  QDockWidget::hideEvent(event);
  Q_EMIT left();
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
  _filter(_search->text());
}

void StylePanel::_refresh() {
  if (!isVisible() || !_isStale)
    return;
  _thumbnails->cancel();
  _areMade = false;
  if (_document.isEmpty()) {
    _list->clear();
    return;
  }
  _isStale = false;
  const auto side = static_cast<int>(PICTURE * devicePixelRatioF());
  const QRect area = _document.filterArea();
  limn::ReducedPhotograph size;
  size.fullWidth = area.width();
  size.fullHeight = area.height();
  limn::FitReduction(size, side);
  _readStyles();
  const QSize shown = QSize(size.ShownWidth(), size.ShownHeight()) / devicePixelRatioF();
  _list->setIconSize(shown);
  const QSize cell(PICTURE + SPACE, shown.height() + fontMetrics().height() + 2 * SPACE);
  _list->setGridSize(cell);
  // Room for the pictures that come later: a list asks only once how large its items are.
  for (int row = 0; row < _list->count(); ++row)
    _list->item(row)->setSizeHint(cell);
  _thumbnails->make(
      [this, area, side, number = _document.originalNumber(), mask = _document.selection().mask,
       relief = _document.recipe().relief] {
        const std::shared_lock lock(_document.lock());
        if (_document.originalNumber() != number)
          throw std::runtime_error("the picture is another one by now");
        return _document.original().reduced(area, mask, relief, side);
      },
      _styles);
}

void StylePanel::_setPicture(int row, const QImage& picture) {
  QPixmap pixmap = QPixmap::fromImage(picture);
  pixmap.setDevicePixelRatio(devicePixelRatioF());
  // A selected one keeps its colours: they are what is to be seen.
  QIcon icon(pixmap);
  icon.addPixmap(pixmap, QIcon::Selected);
  for (int other = 0; row == StyleThumbnails::UNLIT && other < _list->count(); ++other)
    if (_list->item(other)->icon().isNull())
      _list->item(other)->setIcon(icon);
  if (QListWidgetItem* item = _list->item(row))
    item->setIcon(icon);
}

} // namespace editor
