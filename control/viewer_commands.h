#pragma once

#include <span>
#include <string>
#include <string_view>

#include "control/commands/command_item.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class AuditQueries;
class ControlLock;
class DatabaseSelection;
class ListCommands;
class ListOutputs;
class MessageBoxes;
class SideTools;
class Surface;
class ViewerHelp;

/// The commands of menu bar and toolbar: builds them in the current language, and runs what their keys name.
class ViewerCommands {
 public:
  /// What the commands run.
  struct Targets {
    AnswerStatus& answers;
    AuditQueries& queries;
    ControlLock& lock;
    DatabaseSelection& selection;
    ListCommands& lists;
    ListOutputs& outputs;
    SideTools& sideTools;
    ViewerHelp& help;
  };

  /// All must outlive the commands.
  ViewerCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, CommandItems& menu,
                 CommandItems& toolbar, const Targets& targets);
  ViewerCommands(const ViewerCommands&) = delete;
  ViewerCommands& operator=(const ViewerCommands&) = delete;

  void BuildMenu();
  void BuildToolbar();
  void SwitchLanguage();

 private:
  /// A command as it was clicked. Its item may be gone before its action has ended.
  struct ClickedCommand {
    std::string key;
    bool checked = false;
  };
  /// A key and the command that it runs.
  struct CommandAction {
    std::string_view key;
    void (*run)(ViewerCommands& commands, const ClickedCommand& command);
    /// A further condition; null for none.
    bool (*available)() = nullptr;
  };
  /// In the order in which keys are compared: the first that is equal, letter case included, is run.
  [[nodiscard]] static std::span<const CommandAction> menuActions() noexcept;
  [[nodiscard]] static std::span<const CommandAction> toolbarActions() noexcept;
  [[nodiscard]] static const CommandAction* actionOf(std::span<const CommandAction> actions, std::string_view key);
  /// A command without an action is shown disabled.
  [[nodiscard]] static bool isAvailable(std::span<const CommandAction> actions, const CommandItem& item);

  void connectMenu();
  void connectToolbar();
  void connectKeys();
  void SmartMenu_Click(const CommandItem& item);
  void SmartMenu_Highlight(const CommandItem& item);
  void SmartToolbar_Click(const CommandItem& item);
  void chooseLanguage(std::string_view offset);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  CommandItems& menu_;
  CommandItems& toolbar_;
  Targets targets_;
};

}  // namespace korvel::control
