#pragma once

#include <QMenu>
#include <QMenuBar>

#include "control/command_actions.h"

namespace korvel::control {

/// The menu bar `SmartMenu`.
class CommandMenuBar final : public QMenuBar {
  Q_OBJECT

 public:
  explicit CommandMenuBar(QWidget* parent = nullptr);

  /// Before the first mirror().
  void setHooks(CommandHooks hooks);
  void mirror(const CommandItems& items);
  /// Opens the first menu that can be opened, for the keyboard.
  void openFirstMenu();

 protected:
  bool event(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void announceClosed();
  void openMenu(QAction* menu);

  std::function<void()> closed_;
  std::unique_ptr<CommandActions> actions_;
};

/// The context menu `SmartPopup`: shows the children of the one root of its items.
class CommandPopup final : public QMenu {
  Q_OBJECT

 public:
  explicit CommandPopup(QWidget* parent = nullptr);

  void setHooks(CommandHooks hooks);
  void mirror(const CommandItems& items);
  /// An entry of the list's own, below the given ones and a separator. It goes with the next mirror(). It shows `key`,
  /// which the control or the list has while the menu is closed too.
  QAction* addOwnEntry(const QString& text, const QKeySequence& key = {});
  /// The next own entry begins another group.
  void endGroup() { addSeparator(); }

 private:
  bool hasOwnEntries_ = false;
  std::unique_ptr<CommandActions> actions_;
};

}  // namespace korvel::control
