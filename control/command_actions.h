#pragma once

#include <QAction>
#include <QHash>
#include <QIcon>
#include <functional>
#include <memory>
#include <vector>

#include "control/commands/command_item.h"

class QMenu;

namespace korvel::control {

/// What the owner of a command surface wants to hear from it, and what it alone knows about a command.
struct CommandHooks {
  /// A command was chosen; a check command has just been toggled. The surface may be gone afterwards.
  std::function<void(CommandItem&)> clicked;
  /// An item was reached with the pointer or the keyboard; separators and what cannot be chosen with the pointer only.
  std::function<void(const CommandItem&)> highlighted = nullptr;
  /// Nothing is highlighted any more, or at least not in the menu that is now closed.
  std::function<void()> closed = nullptr;
  /// Whether a command can do anything at present, apart from being enabled. Every command can where this is empty.
  std::function<bool(const CommandItem&)> available = nullptr;
};

/// The drawing of a command, the same on every surface; no icon for a key that has none.
[[nodiscard]] QIcon commandIcon(const CommandItem& item);

/// Mirrors command items to the actions of a menu bar or menu, submenus included. Actions that fit the items are kept
/// and only told what changed: a command that rebuilds the menu that it stands in finds its own action alive.
class CommandActions {
 public:
  using Items = std::vector<std::unique_ptr<CommandItem>>;

  /// `container` is a menu bar or a menu; it outlives this object.
  CommandActions(QWidget& container, CommandHooks hooks);

  /// The items as they stand now; they are looked at again at every click, so they must live until the next call.
  void mirror(const Items& items);
  /// The pointer is on this action of the container. Containers themselves tell only of what can be chosen.
  void hover(QAction* action) const { highlight(action); }

 private:
  [[nodiscard]] bool fits(const QWidget& container, const Items& items) const;
  void build(QWidget& container, const Items& items);
  void bind(QWidget& container, const Items& items);
  void removeActions(QWidget& container);
  void setShortcut(QAction& action, const QKeySequence& key);
  QAction* makeAction(QWidget& container, const CommandItem& item);
  QMenu* makeMenu(QWidget& container, const CommandItem& item);
  /// Asks which commands are available.
  void refresh();
  void click(QAction* action);
  void highlight(QAction* action) const;
  [[nodiscard]] bool isUsable(const CommandItem& item) const;

  QWidget& container_;
  CommandHooks hooks_;
  QHash<QAction*, CommandItem*> bound_;
};

}  // namespace korvel::control
