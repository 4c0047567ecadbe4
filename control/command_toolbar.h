#pragma once

#include <QToolBar>
#include <string_view>
#include <vector>

#include "control/command_actions.h"

namespace korvel::control {

/// The toolbar `SmartToolbar`: mirrors the top-level items, placeholders as empty, inert slots.
class CommandToolbar final : public QToolBar {
  Q_OBJECT

 public:
  explicit CommandToolbar(QWidget* parent = nullptr);

  /// `name` names buttons without a tooltip, for assistive technology and for the list of buttons that do not fit.
  void setHooks(CommandHooks hooks, std::function<QString(const CommandItem&)> name);
  /// The items are read again at every click: they must outlive the next call.
  void mirror(const CommandItems& items);

  /// The buttons in their order.
  [[nodiscard]] std::vector<QWidget*> buttons() const;

 private:
  struct Slot {
    QAction* action;
    CommandItem* item;
  };

  void build(const CommandItems& items);
  QAction* makeButton(const CommandItem& item);
  void caption(const Slot& slot);
  void refresh();
  void click(const QAction* action);

  CommandHooks hooks_;
  std::function<QString(const CommandItem&)> name_;
  std::vector<Slot> slots_;
};

}  // namespace korvel::control
