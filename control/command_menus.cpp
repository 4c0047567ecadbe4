#include "control/command_menus.h"

#include <utility>

namespace korvel::control {

CommandMenuBar::CommandMenuBar(QWidget* parent) : QMenuBar(parent) {
  // The control carries its menu itself, wherever it is embedded.
  setNativeMenuBar(false);
  setHooks({});
}

void CommandMenuBar::setHooks(CommandHooks hooks) {
  closed_ = hooks.closed;
  actions_ = std::make_unique<CommandActions>(*this, std::move(hooks));
}

void CommandMenuBar::mirror(const CommandItems& items) {
  actions_->mirror(items.items());
}

void CommandMenuBar::refresh() {
  actions_->refresh();
}

void CommandMenuBar::openFirstMenu() {
  const QList<QAction*> menus = actions();
  for (QAction* menu : menus) {
    if (!menu->isEnabled() || menu->menu() == nullptr) continue;
    setActiveAction(menu);
    menu->menu()->setActiveAction(menu->menu()->actions().value(0));
    return;
  }
}

// Its own entries are highlighted without any menu being open: by a pointer that crosses the bar, or after Esc.
void CommandMenuBar::focusOutEvent(QFocusEvent* event) {
  QMenuBar::focusOutEvent(event);
  announceClosed();
}

void CommandMenuBar::leaveEvent(QEvent* event) {
  QMenuBar::leaveEvent(event);
  announceClosed();
}

void CommandMenuBar::announceClosed() {
  if (closed_ && activeAction() == nullptr) closed_();
}

CommandPopup::CommandPopup(QWidget* parent) : QMenu(parent) {
  setHooks({});
}

void CommandPopup::setHooks(CommandHooks hooks) {
  actions_ = std::make_unique<CommandActions>(*this, std::move(hooks));
}

void CommandPopup::mirror(const CommandItems& items) {
  static const CommandActions::Items none;
  actions_->mirror(items.size() == 0 ? none : items.at(1).children);
}

}  // namespace korvel::control
