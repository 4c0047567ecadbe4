#include "control/command_menus.h"

#include <QApplication>
#include <QMouseEvent>
#include <utility>

namespace korvel::control {
namespace {

/// The menu bar of the control that has the focus.
CommandMenuBar* barOfFocus() {
  for (QWidget* element = QApplication::focusWidget(); element != nullptr; element = element->parentWidget())
    if (auto* bar = element->findChild<CommandMenuBar*>(QString(), Qt::FindDirectChildrenOnly)) return bar;
  return nullptr;
}

}  // namespace

CommandMenuBar::CommandMenuBar(QWidget* parent) : QMenuBar(parent) {
  // The menu stays in the control, wherever it is embedded.
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

void CommandMenuBar::openFirstMenu() {
  const QList<QAction*> menus = actions();
  for (QAction* menu : menus) {
    if (!menu->isEnabled() || menu->menu() == nullptr) continue;
    openMenu(menu);
    return;
  }
}

void CommandMenuBar::openMenu(QAction* menu) {
  setActiveAction(menu);
  menu->menu()->setActiveAction(menu->menu()->actions().value(0));
}

// Mnemonics of the menus work in the whole window. Where two controls use the same one, the control with the focus gets
// it; the toolkit would alternate between them.
bool CommandMenuBar::event(QEvent* event) {
  if (event->type() == QEvent::Shortcut) {
    const auto& key = static_cast<const QShortcutEvent&>(*event);
    CommandMenuBar* const meant = key.isAmbiguous() ? barOfFocus() : nullptr;
    if (meant != nullptr && meant != this) {
      const QList<QAction*> menus = meant->actions();
      for (QAction* menu : menus) {
        if (!menu->isEnabled() || QKeySequence::mnemonic(menu->text()) != key.key()) continue;
        meant->openMenu(menu);
        return true;
      }
    }
  }
  return QMenuBar::event(event);
}

// Also while one of its menus is open: pointer events are passed on to the bar then.
void CommandMenuBar::mouseMoveEvent(QMouseEvent* event) {
  QMenuBar::mouseMoveEvent(event);
  if (QAction* const action = actionAt(event->position().toPoint())) actions_->hover(action);
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
  // What was added below does not belong to the items: the entries are made anew.
  actions_->mirror(items.size() == 0 ? none : items.at(1).children);
  hasOwnEntries_ = false;
}

QAction* CommandPopup::addOwnEntry(const QString& text, const QKeySequence& key) {
  if (!std::exchange(hasOwnEntries_, true)) addSeparator();
  QAction* const entry = addAction(text);
  entry->setShortcut(key);
  entry->setShortcutContext(Qt::WidgetShortcut);
  return entry;
}

}  // namespace korvel::control
