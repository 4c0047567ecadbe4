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

/// Callbacks from a command surface to its owner.
struct CommandHooks {
  /// A command was chosen; a check command has just been toggled. The surface may be gone afterwards.
  std::function<void(CommandItem&)> clicked;
  /// An item was highlighted by pointer or keyboard; separators and disabled items by pointer only.
  std::function<void(const CommandItem&)> highlighted = nullptr;
  /// Nothing is highlighted any more, or at least not in the menu that is now closed.
  std::function<void()> closed = nullptr;
  /// Whether a command is available at present, apart from being enabled. Without this callback every command is.
  std::function<bool(const CommandItem&)> available = nullptr;
};

/// The drawing of a command, the same on every surface; no icon for a key that has none.
[[nodiscard]] QIcon commandIcon(const CommandItem& item);

/// Mirrors command items to the actions of a menu bar or menu, submenus included. Actions that match the items are
/// updated, not replaced, so that a command may rebuild the menu that contains it.
class CommandActions {
 public:
  using Items = std::vector<std::unique_ptr<CommandItem>>;

  /// `container` is a menu bar or a menu; it outlives this object.
  CommandActions(QWidget& container, CommandHooks hooks);

  /// The items are read again at every click: they must outlive the next call.
  void mirror(const Items& items);
  /// The pointer is on this action of the container. Containers themselves report enabled actions only.
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
