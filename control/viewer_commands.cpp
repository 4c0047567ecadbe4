#include "control/viewer_commands.h"

#include <QShortcut>
#include <algorithm>
#include <array>
#include <memory>

#include "control/answer_status.h"
#include "control/audit_queries.h"
#include "control/commands/command_tables.h"
#include "control/control_lock.h"
#include "control/database_selection.h"
#include "control/library_state.h"
#include "control/list_commands.h"
#include "control/list_outputs.h"
#include "control/message_boxes.h"
#include "control/side_tools.h"
#include "control/surface.h"
#include "control/texts.h"
#include "control/viewer_help.h"
#include "korvel/AuditViewer.h"
#include "settings/registry.h"

namespace korvel::control {

namespace {

bool printFontFormExists() {
  return platform().services->hasForm(form_name::printFont);
}

}  // namespace

ViewerCommands::ViewerCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, CommandItems& menu,
                               CommandItems& toolbar, const Targets& targets)
    : viewer_(viewer), messages_(messages), surface_(surface), menu_(menu), toolbar_(toolbar), targets_(targets) {
  connectMenu();
  connectToolbar();
  connectKeys();
}

void ViewerCommands::connectMenu() {
  surface_.SmartMenu->setHooks({
      .clicked = [this](const CommandItem& item) { SmartMenu_Click(item); },
      .highlighted = [this](const CommandItem& item) { SmartMenu_Highlight(item); },
      // The help of the highlighted item ends with the menu; the panel goes back to its resting text.
      .closed = [this] { targets_.answers.showRestingText(); },
      .available = [](const CommandItem& item) { return isAvailable(menuActions(), item); },
  });
  menu_.changed = [this] { surface_.SmartMenu->mirror(menu_); };
}

void ViewerCommands::connectToolbar() {
  surface_.SmartToolbar->setHooks(
      {
          .clicked = [this](const CommandItem& item) { SmartToolbar_Click(item); },
          .available = [](const CommandItem& item) { return isAvailable(toolbarActions(), item); },
      },
      [](const CommandItem& item) {
        constexpr int viewSideTools = 10029;
        return item.key == "TOOLS" ? loadText(viewSideTools) : ownText("command.fitColumns");
      });
  toolbar_.changed = [this] { surface_.SmartToolbar->mirror(toolbar_); };
}

void ViewerCommands::connectKeys() {
  auto* menuKey = new QShortcut(Qt::Key_F10, &viewer_);
  menuKey->setContext(Qt::WidgetWithChildrenShortcut);
  QObject::connect(menuKey, &QShortcut::activated, &viewer_, [this] { surface_.SmartMenu->openFirstMenu(); });
  // The text box of custom queries takes the key itself.
  auto* queryKey = new QShortcut(Qt::Key_F5, &viewer_);
  queryKey->setContext(Qt::WidgetWithChildrenShortcut);
  queryKey->setAutoRepeat(false);
  QObject::connect(queryKey, &QShortcut::activated, &viewer_, [this] { targets_.queries.runQueryByKey(); });
  auto* loadKey = new QShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_L, &viewer_);
  loadKey->setContext(Qt::WidgetWithChildrenShortcut);
  loadKey->setAutoRepeat(false);
  QObject::connect(loadKey, &QShortcut::activated, &viewer_,
                   [this] { messages_.trapped("LoadAll", [this] { targets_.queries.LoadAll(); }); });
}

// Keys that no item of the menu carries are recognised all the same.
std::span<const ViewerCommands::CommandAction> ViewerCommands::menuActions() noexcept {
  using Command = const ClickedCommand&;
  constexpr auto chooseLanguageOfKey = [](ViewerCommands& commands, Command command) {
    commands.chooseLanguage(languageOffsetOfKey(command.key));
  };
  static constexpr std::array actions = {
      CommandAction{"SELECT",
                    [](ViewerCommands& commands, Command) { commands.targets_.selection.btSelectDB_Click(); }},
      CommandAction{"PRINTPREVIEW", [](ViewerCommands&, Command) {}},
      CommandAction{"PAGESETUP",
                    [](ViewerCommands& commands, Command) {
                      const std::shared_ptr<ControlServices> services = platform().services;
                      services->showForm(&commands.viewer_, form_name::printFont);
                    },
                    &printFontFormExists},
      CommandAction{"PRINT", [](ViewerCommands& commands, Command) { commands.targets_.outputs.btPrint_Click(); }},
      CommandAction{"EXIT", [](ViewerCommands& commands, Command) { Q_EMIT commands.viewer_.ExitApp(); }},
      CommandAction{"QUERY", [](ViewerCommands& commands, Command) { commands.targets_.queries.btQuery_Click(); }},
      CommandAction{"CLEAR", [](ViewerCommands& commands, Command) { commands.targets_.queries.btClear_Click(); }},
      CommandAction{"SELECTALLFILTERS",
                    [](ViewerCommands& commands, Command) { commands.targets_.sideTools.btSelectALL_Click(); }},
      CommandAction{"CLEARALLFILTERS",
                    [](ViewerCommands& commands, Command) { commands.targets_.sideTools.btUnselectALL_Click(); }},
      CommandAction{"EXPORTEXCEL",
                    [](ViewerCommands& commands, Command) { commands.targets_.outputs.btExcel_Click(); }},
      CommandAction{"EXPORTNOTEPAD", [](ViewerCommands&, Command) {}},
      CommandAction{"FONT", [](ViewerCommands& commands, Command) { commands.targets_.lists.ChangeFont(); }},
      CommandAction{"ENGLISH", chooseLanguageOfKey},
      CommandAction{"GERMAN", chooseLanguageOfKey},
      CommandAction{"FRENCH", chooseLanguageOfKey},
      CommandAction{"SPANISH", chooseLanguageOfKey},
      CommandAction{"ITALIAN", chooseLanguageOfKey},
      CommandAction{"TOOLS", [](ViewerCommands& commands,
                                Command command) { commands.viewer_.setViewSideTools(command.checked); }},
      CommandAction{"KEY", [](ViewerCommands& commands,
                              Command command) { commands.targets_.lists.ShowKeyField(command.checked); }},
      CommandAction{"CONTENTSHELP", [](ViewerCommands& commands, Command) { commands.targets_.help.HelpContents(); }},
      CommandAction{"SEARCHHELP", [](ViewerCommands& commands, Command) { commands.targets_.help.HelpSearch(); }},
      CommandAction{"ABOUT", [](ViewerCommands& commands, Command) { commands.targets_.help.ShowAbout(); }},
  };
  return actions;
}

// Several keys deliberately call other members than the menu's do.
std::span<const ViewerCommands::CommandAction> ViewerCommands::toolbarActions() noexcept {
  using Command = const ClickedCommand&;
  static constexpr std::array actions = {
      CommandAction{"SELECT", [](ViewerCommands& commands, Command) { commands.targets_.selection.SelectDatabase(); }},
      CommandAction{"INFO", [](ViewerCommands& commands, Command) { commands.targets_.selection.btDBInfo_Click(); }},
      CommandAction{"QUERY", [](ViewerCommands& commands, Command) { commands.targets_.queries.btQuery_Click(); }},
      CommandAction{"CLEAR", [](ViewerCommands& commands, Command) { commands.targets_.queries.btClear_Click(); }},
      CommandAction{"SELECTALLFILTERS", [](ViewerCommands& commands, Command) { commands.viewer_.SelectALL(); }},
      CommandAction{"CLEARALLFILTERS", [](ViewerCommands& commands, Command) { commands.viewer_.UnselectALL(); }},
      CommandAction{"EXPORTEXCEL", [](ViewerCommands& commands, Command) { commands.viewer_.ExportExcel(); }},
      CommandAction{"EXPORTNOTEPAD", [](ViewerCommands& commands, Command) { commands.viewer_.ExportNotepad(); }},
      CommandAction{"ADJUSTCOL", [](ViewerCommands& commands, Command) { commands.targets_.lists.adjustColumns(); }},
      CommandAction{"TOOLS", [](ViewerCommands& commands,
                                Command) { commands.viewer_.setViewSideTools(!commands.viewer_.ViewSideTools()); }},
      CommandAction{"PRINT", [](ViewerCommands& commands, Command) { commands.targets_.outputs.btPrint_Click(); }},
      CommandAction{"PRINTPREVIEW", [](ViewerCommands&, Command) {}},
  };
  return actions;
}

const ViewerCommands::CommandAction* ViewerCommands::actionOf(std::span<const CommandAction> actions,
                                                              std::string_view key) {
  const auto found =
      std::find_if(actions.begin(), actions.end(), [key](const CommandAction& action) { return action.key == key; });
  return found == actions.end() ? nullptr : &*found;
}

bool ViewerCommands::isAvailable(std::span<const CommandAction> actions, const CommandItem& item) {
  const CommandAction* action = actionOf(actions, item.key);
  if (action == nullptr) return false;
  return action->available == nullptr || action->available();
}

void ViewerCommands::BuildMenu() {
  skipFailing([this] { control::buildMenu(menu_, libraryState().language); });
}

void ViewerCommands::BuildToolbar() {
  skipFailing([this] { control::buildToolbar(toolbar_, libraryState().language); });
  surface_.orderFocus();
}

void ViewerCommands::SwitchLanguage() {
  BuildMenu();
  BuildToolbar();
  viewer_.BuildMisc();
  // The rebuilt commands are all enabled.
  if (libraryState().connection.ConnectionString.empty()) targets_.lock.LockControls();
  Q_EMIT viewer_.LanguageChanged();
}

void ViewerCommands::chooseLanguage(std::string_view offset) {
  {
    const auto backend = platform().openSettings();
    settings::Registry(*backend).SaveSetting(std::string(settings::applicationName),
                                             std::string(settings::viewerSection), "Language", std::string(offset));
    // Read back: the stored value counts, not the one that was to be stored.
    libraryState().language = settings::storedLanguage(*backend);
  }
  SwitchLanguage();
}

void ViewerCommands::SmartMenu_Click(const CommandItem& item) {
  const ClickedCommand command{item.key, item.checked};
  const CommandAction* action = actionOf(menuActions(), command.key);
  if (action == nullptr) return;
  messages_.trapped("SmartMenu_Click", [&] { action->run(*this, command); });
}

void ViewerCommands::SmartMenu_Highlight(const CommandItem& item) {
  surface_.StatusBar1->setStatus(ui::fromUtf8(item.description));
}

void ViewerCommands::SmartToolbar_Click(const CommandItem& item) {
  const ClickedCommand command{item.key, item.checked};
  const CommandAction* action = actionOf(toolbarActions(), command.key);
  if (action == nullptr) return;
  skipFailing([&] { action->run(*this, command); });
}

}  // namespace korvel::control
