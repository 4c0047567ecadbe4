#include "control/command_toolbar.h"

#include <QToolButton>
#include <algorithm>
#include <utility>

#include "control/texts.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

/// Width of a placeholder at 96 dpi: room that sets groups apart.
constexpr int slotWidth = 14;

bool isButton(const CommandItem& item) {
  return item.kind == ItemKind::button && item.active;
}

}  // namespace

CommandToolbar::CommandToolbar(QWidget* parent) : QToolBar(parent) {
  setMovable(false);
  setFloatable(false);
  const int side = ui::px(this, ui::space::icon);
  setIconSize({side, side});
  // No context menu that could hide the toolbar.
  setContextMenuPolicy(Qt::PreventContextMenu);
}

void CommandToolbar::setHooks(CommandHooks hooks, std::function<QString(const CommandItem&)> name) {
  hooks_ = std::move(hooks);
  name_ = std::move(name);
}

void CommandToolbar::mirror(const CommandItems& items) {
  // Buttons that match the items are kept, so that a command may rebuild the toolbar with its own button.
  const bool fits =
      slots_.size() == items.size() &&
      std::equal(slots_.begin(), slots_.end(), items.items().begin(), [](const Slot& slot, const auto& item) {
        return slot.action->isSeparator() == (item->kind == ItemKind::toolbarSeparator) &&
               slot.action->objectName() == fromUtf8(item->key);
      });
  if (!fits) build(items);
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    slots_[i].item = items.items()[i].get();
    if (isButton(*slots_[i].item)) caption(slots_[i]);
  }
  refresh();
}

void CommandToolbar::build(const CommandItems& items) {
  for (const Slot& slot : std::exchange(slots_, {})) {
    removeAction(slot.action);
    slot.action->deleteLater();
  }
  for (const auto& item : items.items()) {
    QAction* action = nullptr;
    if (item->kind == ItemKind::toolbarSeparator) {
      action = addSeparator();
    } else if (!item->active) {
      auto* room = new QWidget(this);
      room->setFixedWidth(ui::px(this, slotWidth));
      action = addWidget(room);
    } else {
      action = makeButton(*item);
    }
    action->setObjectName(fromUtf8(item->key));
    slots_.push_back({action, item.get()});
  }
}

QAction* CommandToolbar::makeButton(const CommandItem& item) {
  auto* action = new QAction(commandIcon(item), QString(), this);
  addAction(action);
  QWidget* const button = widgetForAction(action);
  button->setFocusPolicy(Qt::TabFocus);
  button->setObjectName(QLatin1String("SmartToolbar_") + fromUtf8(item.key));
  connect(action, &QAction::triggered, this, [this, action] { click(action); });
  return action;
}

void CommandToolbar::caption(const Slot& slot) {
  const QString toolTip = fromUtf8(slot.item->toolTip);
  const QString name = toolTip.isEmpty() && name_ ? name_(*slot.item) : toolTip;
  slot.action->setText(name);
  slot.action->setToolTip(toolTip);
  widgetForAction(slot.action)->setAccessibleName(name);
}

void CommandToolbar::refresh() {
  for (const Slot& slot : slots_) {
    const CommandItem& item = *slot.item;
    if (!isButton(item)) {
      slot.action->setEnabled(item.enabled && item.active);
      continue;
    }
    slot.action->setEnabled(item.enabled && (!hooks_.available || hooks_.available(item)));
    // The toolkit would show the name where there is no tooltip.
    widgetForAction(slot.action)->setToolTip(fromUtf8(item.toolTip));
  }
}

std::vector<QWidget*> CommandToolbar::buttons() const {
  std::vector<QWidget*> all;
  for (const Slot& slot : slots_)
    if (isButton(*slot.item)) all.push_back(widgetForAction(slot.action));
  return all;
}

void CommandToolbar::click(const QAction* action) {
  const auto slot =
      std::find_if(slots_.begin(), slots_.end(), [action](const Slot& one) { return one.action == action; });
  if (slot == slots_.end()) return;
  // A copy: the callback may destroy the toolbar.
  const auto clicked = hooks_.clicked;
  if (clicked) clicked(*slot->item);
}

}  // namespace korvel::control
