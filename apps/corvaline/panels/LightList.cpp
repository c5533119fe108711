#include "LightList.h"

#include "ColorChoice.h"

#include "LM_light.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalBlocker>
#include <algorithm>

namespace editor {
namespace {

constexpr int ICON_SIDE = 16;
constexpr int LOOK = Qt::UserRole; // what the icon was drawn from

} // namespace

LightList::LightList(LightsModel& model, QWidget* parent) : QListWidget(parent), _model(model) {
  setAccessibleName(tr("Lights"));
  setDragDropMode(InternalMove);
  setIconSize({ICON_SIDE, ICON_SIDE});
  setContextMenuPolicy(Qt::ActionsContextMenu);
  _add("light-add", tr("Add Light"), {}, tr("Put a new light in the middle of the picture"),
       [this] {
         _model.add({0, 0});
       });
  _add("light-copy", tr("Duplicate"), QKeySequence("Ctrl+J"),
       tr("Put a second light like this one beside it"), [this] { _model.duplicate(); });
  _add("light-mirror", tr("Mirror"), {}, tr("Move the light to the other side, left to right"),
       [this] { _model.mirror(); });
  _add("light-solo", tr("Solo"), {},
       tr("Switch all other lights off; once more, and they are as before"),
       [this] { _model.solo(); });
  _add("light-delete", tr("Delete"), QKeySequence::Delete, tr("Take this light away"),
       [this] { _model.remove(); });
  _add("", tr("Copy"), QKeySequence::Copy, tr("Put this light on the clipboard, as JSON"),
       [this] { QGuiApplication::clipboard()->setText(_model.json()); });
  _add("", tr("Paste"), QKeySequence::Paste, tr("Add the lights that are on the clipboard"),
       [this] { _model.paste(QGuiApplication::clipboard()->text()); });
  _add("", tr("Up in the List"), QKeySequence("Alt+Up"), tr("Move this light up in the list"),
       [this] { _model.moveTo(_model.selected(), _model.selected() - 1); });
  _add("", tr("Down in the List"), QKeySequence("Alt+Down"), tr("Move this light down in the list"),
       [this] { _model.moveTo(_model.selected(), _model.selected() + 1); });
  connect(this, &QListWidget::currentRowChanged, &_model, &LightsModel::select);
  connect(this, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
    _model.setOn(row(item), item->checkState() == Qt::Checked);
  });
  connect(this->QListWidget::model(), &QAbstractItemModel::rowsMoved, this,
          [this](const QModelIndex&, int from, int, const QModelIndex&, int before) {
            _model.moveTo(from, before > from ? before - 1 : before);
          });
  connect(&_model, &LightsModel::changed, this, &LightList::_show);
  _show();
}

QSize LightList::sizeHint() const {
  constexpr int ROWS = 5;
  const int line = std::max(fontMetrics().height(), ICON_SIDE) + 4;
  return {180, ROWS * line + 2 * frameWidth()};
}

template <typename Slot>
void LightList::_add(const QString& icon, const QString& text, const QKeySequence& key,
                     const QString& tip, Slot slot) {
  auto* action = new QAction(text, this);
  action->setObjectName(icon);
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetShortcut);
  action->setToolTip(tip);
  action->setStatusTip(tip);
  connect(action, &QAction::triggered, this, slot);
  addAction(action);
}

void LightList::_show() {
  const QSignalBlocker quiet(this);
  while (count() > _model.count())
    delete takeItem(count() - 1);
  while (count() < _model.count()) {
    auto* item = new QListWidgetItem(this);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                   Qt::ItemIsDragEnabled);
  }
  for (int i = 0; i < count(); ++i) {
    const LM_style_light& light = _model.light(i);
    const QColor color = _model.shownColor(i);
    const bool isOn = light.on == 1;
    const QString name = QString("%1. %2").arg(i + 1).arg(KindName(light.type));
    const QString look = color.name(QColor::HexRgb) + (isOn ? "on" : "off") + name;
    if (item(i)->data(LOOK).toString() == look)
      continue;
    item(i)->setData(LOOK, look);
    item(i)->setText(name);
    item(i)->setIcon(Swatch(color, ICON_SIDE, isOn));
    item(i)->setCheckState(isOn ? Qt::Checked : Qt::Unchecked);
  }
  setCurrentRow(_model.selected());
}

} // namespace editor
