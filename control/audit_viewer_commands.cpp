// The commands of menu bar and toolbar: what builds them, and what their keys do.
#include <QShortcut>
#include <algorithm>
#include <array>
#include <utility>

#include "control/audit_viewer_members.h"
#include "control/commands/command_tables.h"
#include "control/skip_failing.h"
#include "control/texts.h"
#include "settings/registry.h"
#include "settings/stored_language.h"

namespace korvel {

using control::CommandItem;
using control::libraryState;
using control::skipFailing;
using control::surroundings;

namespace {

const QString printFontForm = QStringLiteral("frmPrintFont");

bool printFontFormExists() {
  return surroundings().services->hasForm(printFontForm);
}

}  // namespace

// Keys that no item of the menu carries are recognised all the same.
std::span<const AuditViewer::Members::CommandAction> AuditViewer::Members::menuActions() noexcept {
  using Command = const ClickedCommand&;
  constexpr auto chooseLanguageOfKey = [](Members& members, Command command) {
    members.chooseLanguage(control::languageOffsetOfKey(command.key));
  };
  static constexpr std::array actions = {
      CommandAction{"SELECT", [](Members& members, Command) { members.btSelectDB_Click(); }},
      CommandAction{"PRINTPREVIEW", [](Members&, Command) {}},
      CommandAction{"PAGESETUP",
                    [](Members& members, Command) {
                      const std::shared_ptr<control::ControlServices> services = surroundings().services;
                      services->showForm(&members.viewer_, printFontForm);
                    },
                    [](const Members&) { return printFontFormExists(); }},
      CommandAction{"PRINT", [](Members& members, Command) { members.btPrint_Click(); }},
      CommandAction{"EXIT", [](Members& members, Command) { Q_EMIT members.viewer_.ExitApp(); }},
      CommandAction{"QUERY", [](Members& members, Command) { members.btQuery_Click(); }},
      CommandAction{"CLEAR", [](Members& members, Command) { members.btClear_Click(); }},
      CommandAction{"SELECTALLFILTERS", [](Members& members, Command) { members.btSelectALL_Click(); }},
      CommandAction{"CLEARALLFILTERS", [](Members& members, Command) { members.btUnselectALL_Click(); }},
      CommandAction{"EXPORTEXCEL", [](Members& members, Command) { members.btExcel_Click(); }},
      CommandAction{"EXPORTNOTEPAD", [](Members&, Command) {}},
      CommandAction{"FONT", [](Members& members, Command) { members.ChangeFont(); }},
      CommandAction{"ENGLISH", chooseLanguageOfKey},
      CommandAction{"GERMAN", chooseLanguageOfKey},
      CommandAction{"FRENCH", chooseLanguageOfKey},
      CommandAction{"SPANISH", chooseLanguageOfKey},
      CommandAction{"ITALIAN", chooseLanguageOfKey},
      CommandAction{"TOOLS",
                    [](Members& members, Command command) { members.viewer_.setViewSideTools(command.checked); }},
      CommandAction{"KEY", [](Members& members, Command command) { members.ShowKeyField(command.checked); }},
      CommandAction{"CONTENTSHELP", [](Members& members, Command) { members.HelpContents(); }},
      CommandAction{"SEARCHHELP", [](Members& members, Command) { members.HelpSearch(); }},
      CommandAction{"ABOUT", [](Members& members, Command) { members.ShowAbout(); }},
  };
  return actions;
}

// Several keys deliberately call other members than the menu's do.
std::span<const AuditViewer::Members::CommandAction> AuditViewer::Members::toolbarActions() noexcept {
  using Command = const ClickedCommand&;
  static constexpr std::array actions = {
      CommandAction{"SELECT", [](Members& members, Command) { members.SelectDatabase(); }},
      CommandAction{"INFO", [](Members& members, Command) { members.btDBInfo_Click(); }},
      CommandAction{"QUERY", [](Members& members, Command) { members.btQuery_Click(); }},
      CommandAction{"CLEAR", [](Members& members, Command) { members.btClear_Click(); }},
      CommandAction{"SELECTALLFILTERS", [](Members& members, Command) { members.viewer_.SelectALL(); }},
      CommandAction{"CLEARALLFILTERS", [](Members& members, Command) { members.viewer_.UnselectALL(); }},
      CommandAction{"EXPORTEXCEL", [](Members& members, Command) { members.viewer_.ExportExcel(); }},
      CommandAction{"EXPORTNOTEPAD", [](Members& members, Command) { members.viewer_.ExportNotepad(); }},
      CommandAction{"ADJUSTCOL", [](Members& members, Command) { members.adjustColumns(); }},
      CommandAction{"TOOLS", [](Members& members,
                                Command) { members.viewer_.setViewSideTools(!members.properties.ViewSideTools); }},
      CommandAction{"PRINT", [](Members& members, Command) { members.btPrint_Click(); }},
      CommandAction{"PRINTPREVIEW", [](Members&, Command) {}},
  };
  return actions;
}

const AuditViewer::Members::CommandAction* AuditViewer::Members::actionOf(std::span<const CommandAction> actions,
                                                                          std::string_view key) {
  const auto found =
      std::find_if(actions.begin(), actions.end(), [key](const CommandAction& action) { return action.key == key; });
  return found == actions.end() ? nullptr : &*found;
}

bool AuditViewer::Members::isAvailable(std::span<const CommandAction> actions, const CommandItem& item) const {
  const CommandAction* action = actionOf(actions, item.key);
  if (action == nullptr || action->run == nullptr) return false;
  return action->available == nullptr || action->available(*this);
}

void AuditViewer::Members::connectCommands() {
  surface.SmartMenu->setHooks({
      .clicked = [this](const CommandItem& item) { SmartMenu_Click(item); },
      .highlighted = [this](const CommandItem& item) { SmartMenu_Highlight(item); },
      // What the highlighted items said was about them; what the panel said before is still to be told.
      .closed = [this] { showRestingText(); },
      .available = [this](const CommandItem& item) { return isAvailable(menuActions(), item); },
  });
  surface.SmartToolbar->setHooks(
      {
          .clicked = [this](const CommandItem& item) { SmartToolbar_Click(item); },
          .available = [this](const CommandItem& item) { return isAvailable(toolbarActions(), item); },
      },
      [](const CommandItem& item) {
        constexpr int viewSideTools = 10029;
        return item.key == "TOOLS" ? control::loadText(viewSideTools) : control::ownText("command.fitColumns");
      });
  menuItems_.changed = [this] { surface.SmartMenu->mirror(menuItems_); };
  toolbarItems_.changed = [this] { surface.SmartToolbar->mirror(toolbarItems_); };

  auto* menuKey = new QShortcut(Qt::Key_F10, &viewer_);
  menuKey->setContext(Qt::WidgetWithChildrenShortcut);
  QObject::connect(menuKey, &QShortcut::activated, &viewer_, [this] { surface.SmartMenu->openFirstMenu(); });
  // The text box of custom queries takes the key itself.
  auto* queryKey = new QShortcut(Qt::Key_F5, &viewer_);
  queryKey->setContext(Qt::WidgetWithChildrenShortcut);
  queryKey->setAutoRepeat(false);
  QObject::connect(queryKey, &QShortcut::activated, &viewer_, [this] { runQueryByKey(); });
}

void AuditViewer::Members::runQueryByKey() {
  if (surface.btQuery->isEnabled()) trapped("btQuery_Click", [this] { btQuery_Click(); });
}

void AuditViewer::Members::BuildMenu() {
  skipFailing([this] { control::buildMenu(menuItems_, libraryState().language); });
}

void AuditViewer::Members::BuildToolbar() {
  skipFailing([this] { control::buildToolbar(toolbarItems_, libraryState().language); });
  surface.orderFocus();
}

void AuditViewer::Members::SmartMenu_Click(const CommandItem& item) {
  const ClickedCommand command{item.key, item.checked};
  const CommandAction* action = actionOf(menuActions(), command.key);
  if (action == nullptr || action->run == nullptr) return;
  trapped("SmartMenu_Click", [&] { action->run(*this, command); });
}

void AuditViewer::Members::SmartMenu_Highlight(const CommandItem& item) {
  surface.StatusBar1->setStatus(ui::fromUtf8(item.description));
}

void AuditViewer::Members::SmartToolbar_Click(const CommandItem& item) {
  const ClickedCommand command{item.key, item.checked};
  const CommandAction* action = actionOf(toolbarActions(), command.key);
  if (action == nullptr || action->run == nullptr) return;
  skipFailing([&] { action->run(*this, command); });
}

void AuditViewer::Members::chooseLanguage(std::string_view offset) {
  {
    const auto backend = surroundings().openSettings();
    settings::Registry(*backend).SaveSetting(std::string(settings::applicationName),
                                             std::string(settings::viewerSection), "Language", std::string(offset));
    // What was stored counts, not what was to be stored.
    libraryState().language = settings::storedLanguage(*backend);
  }
  SwitchLanguage();
}

void AuditViewer::Members::SwitchLanguage() {
  BuildMenu();
  BuildToolbar();
  BuildMisc();
  // The rebuilt commands are all enabled.
  if (libraryState().connection.ConnectionString.empty()) LockControls();
  Q_EMIT viewer_.LanguageChanged();
}

void AuditViewer::Members::adjustColumns() {
  control::ResultListView& list = currentList();
  if (list.listModel().list().rowCount() > 0) AutoSizeColumns(list);
}

void AuditViewer::Members::AutoSizeColumns(control::ResultListView& list, std::optional<int> column) {
  if (column) {
    list.autoSizeColumn(*column);
  } else {
    for (int each = 0; each < list.listModel().columnCount(); ++each) list.autoSizeColumn(each);
  }
  ShowKeyField(menuItems_.item("KEY").checked);
  list.viewport()->update();
}

}  // namespace korvel
