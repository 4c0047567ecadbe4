#include "control/command_actions.h"

#include <QMenu>
#include <QMouseEvent>
#include <algorithm>
#include <array>
#include <string_view>

#include "control/texts.h"
#include "ui/icons/icons.h"

namespace korvel::control {
namespace {

using ui::IconName;
using ui::IconTone;

struct CommandDrawing {
  std::string_view key;
  IconName icon;
  IconTone tone = IconTone::Text;
};

constexpr std::array drawings = {
    CommandDrawing{"SELECT", IconName::Select},
    CommandDrawing{"INFO", IconName::Info},
    CommandDrawing{"PAGESETUP", IconName::PageSetup},
    CommandDrawing{"PRINT", IconName::Print},
    CommandDrawing{"EXIT", IconName::Exit},
    CommandDrawing{"QUERY", IconName::Query, IconTone::Accent},
    CommandDrawing{"CLEAR", IconName::Clear},
    CommandDrawing{"SELECTALLFILTERS", IconName::SelectAll},
    CommandDrawing{"CLEARALLFILTERS", IconName::UnselectAll},
    CommandDrawing{"EXPORTEXCEL", IconName::Export},
    CommandDrawing{"FONT", IconName::Font},
    CommandDrawing{"ADJUSTCOL", IconName::Columns},
    CommandDrawing{"TOOLS", IconName::SideTools},
    CommandDrawing{"LANGUAGE", IconName::Language},
    CommandDrawing{"ABOUT", IconName::About},
};

bool isSeparator(const CommandItem& item) {
  return item.kind == ItemKind::menuSeparator;
}
bool isMenu(const CommandItem& item) {
  return item.kind == ItemKind::topLevelMenu || item.kind == ItemKind::submenu;
}

/// A menu that reports every item under the pointer, disabled ones too.
class HoverMenu final : public QMenu {
 public:
  HoverMenu(QWidget* parent, std::function<void(QAction*)> hovered) : QMenu(parent), hovered_(std::move(hovered)) {}

 protected:
  void mouseMoveEvent(QMouseEvent* event) override {
    QMenu::mouseMoveEvent(event);
    if (QAction* const action = actionAt(event->position().toPoint())) hovered_(action);
  }

 private:
  std::function<void(QAction*)> hovered_;
};

/// The key of the item that an action was made for.
constexpr const char* keyProperty = "korvelCommandKey";

QString actionText(const CommandItem& item) {
  const QString caption = fromUtf8(item.caption);
  return item.shortcutText.empty() ? caption : caption + QLatin1Char('\t') + fromUtf8(item.shortcutText);
}

}  // namespace

QIcon commandIcon(const CommandItem& item) {
  // Check commands show their tick instead of an icon.
  if (item.kind == ItemKind::check) return {};
  const auto* found =
      std::find_if(drawings.begin(), drawings.end(), [&](const CommandDrawing& row) { return row.key == item.key; });
  return found == drawings.end() ? QIcon() : ui::icon(found->icon, found->tone);
}

CommandActions::CommandActions(QWidget& container, CommandHooks hooks)
    : container_(container), hooks_(std::move(hooks)) {}

void CommandActions::mirror(const Items& items) {
  bound_.clear();
  if (!fits(container_, items)) {
    removeActions(container_);
    build(container_, items);
  }
  bind(container_, items);
  refresh();
}

bool CommandActions::fits(const QWidget& container, const Items& items) const {
  const QList<QAction*> actions = container.actions();
  if (static_cast<std::size_t>(actions.size()) != items.size()) return false;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const QAction& action = *actions[static_cast<qsizetype>(i)];
    const CommandItem& item = *items[i];
    const QMenu* menu = action.menu();
    if (action.property(keyProperty).toString() != fromUtf8(item.key)) return false;
    if (action.isSeparator() != isSeparator(item) || (menu != nullptr) != isMenu(item)) return false;
    if (action.isCheckable() != (item.kind == ItemKind::check)) return false;
    if (menu != nullptr && !fits(*menu, item.children)) return false;
  }
  return true;
}

void CommandActions::removeActions(QWidget& container) {
  const QList<QAction*> actions = container.actions();
  for (QAction* action : actions) {
    container.removeAction(action);
    if (QWidget* const control = container_.parentWidget()) control->removeAction(action);
    // Deferred: this action, or one in this menu, may be running.
    if (QMenu* menu = action->menu()) {
      menu->setObjectName(QString());
      menu->deleteLater();
    } else {
      action->setObjectName(QString());
      action->deleteLater();
    }
  }
}

void CommandActions::build(QWidget& container, const Items& items) {
  for (const auto& item : items) {
    QAction* action = isMenu(*item) ? makeMenu(container, *item)->menuAction() : makeAction(container, *item);
    action->setProperty(keyProperty, fromUtf8(item->key));
    container.addAction(action);
  }
}

QMenu* CommandActions::makeMenu(QWidget& container, const CommandItem& item) {
  auto* menu = new HoverMenu(&container, [this](QAction* action) { hover(action); });
  menu->setObjectName(fromUtf8(item.key));
  build(*menu, item.children);
  QAction* const action = menu->menuAction();
  QObject::connect(action, &QAction::hovered, &container_, [this, action] { highlight(action); });
  QObject::connect(menu, &QMenu::aboutToHide, &container_, [this] {
    if (hooks_.closed) hooks_.closed();
  });
  return menu;
}

QAction* CommandActions::makeAction(QWidget& container, const CommandItem& item) {
  auto* action = new QAction(&container);
  if (isSeparator(item)) {
    action->setSeparator(true);
    return action;
  }
  action->setObjectName(fromUtf8(item.key));
  action->setCheckable(item.kind == ItemKind::check);
  // Roles are not guessed from captions: some platforms would move "Exit" and similar items to another menu.
  action->setMenuRole(QAction::NoRole);
  QObject::connect(action, &QAction::hovered, &container_, [this, action] { highlight(action); });
  QObject::connect(action, &QAction::triggered, &container_, [this, action] { click(action); });
  return action;
}

void CommandActions::bind(QWidget& container, const Items& items) {
  const QList<QAction*> actions = container.actions();
  for (std::size_t i = 0; i < items.size(); ++i) {
    QAction* const action = actions[static_cast<qsizetype>(i)];
    CommandItem* const item = items[i].get();
    bound_.insert(action, item);
    if (isSeparator(*item)) continue;
    action->setText(actionText(*item));
    setShortcut(*action, QKeySequence(fromUtf8(item->shortcutText)));
    action->setChecked(item->checked);
    action->setIcon(item->kind == ItemKind::topLevelMenu ? QIcon() : commandIcon(*item));
    if (QMenu* menu = action->menu()) bind(*menu, item->children);
  }
}

/// A shortcut belongs to the control with the menu: a window may contain several controls with the same shortcuts.
void CommandActions::setShortcut(QAction& action, const QKeySequence& key) {
  action.setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action.setShortcut(key);
  QWidget* const control = container_.parentWidget();
  if (!key.isEmpty() && control != nullptr) control->addAction(&action);
}

void CommandActions::refresh() {
  for (auto it = bound_.cbegin(); it != bound_.cend(); ++it) it.key()->setEnabled(isUsable(*it.value()));
}

bool CommandActions::isUsable(const CommandItem& item) const {
  if (!item.enabled) return false;
  return isMenu(item) || isSeparator(item) || !hooks_.available || hooks_.available(item);
}

void CommandActions::click(QAction* action) {
  CommandItem* const item = bound_.value(action);
  if (item == nullptr) return;
  if (item->kind == ItemKind::check) item->checked = action->isChecked();
  // A copy: the callback may destroy the surface.
  const auto clicked = hooks_.clicked;
  if (clicked) clicked(*item);
}

void CommandActions::highlight(QAction* action) const {
  const CommandItem* const item = bound_.value(action);
  if (item != nullptr && hooks_.highlighted) hooks_.highlighted(*item);
}

}  // namespace korvel::control
