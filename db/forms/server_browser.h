#pragma once

#include <QDialog>
#include <QList>
#include <QStandardItemModel>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "base/error.h"
#include "base/twips.h"
#include "db/connection_state.h"
#include "db/forms/smart_view_bar.h"
#include "db/server_directory.h"
#include "settings/string_table.h"
#include "ui/dialog_services.h"

class QLabel;
class QLineEdit;
class QRadioButton;
class QStatusBar;
class QToolButton;

namespace korvel::ui {
class ResultTable;
}

namespace korvel::db {

/// What the browser takes over from the last time, and leaves for the next.
struct BrowserMemory {
  std::optional<Twips> splitter{};
  /// Databases that can be selected without asking their servers, the newest first.
  struct Database {
    QString server;
    QString name;
  };
  QList<Database> recent{};
  /// Called when the user wants no more of them; there is no such entry without it.
  std::function<void()> forget{};
};

/// What the browser needs; all of it outlives the dialog.
struct ServerBrowserContext {
  /// What OK writes the choice into.
  ConnectionState& connection;
  const settings::LanguageOffset& language;
  std::shared_ptr<ui::DialogServices> services;
  std::function<std::unique_ptr<ServerDirectory>()> openDirectory;
  BrowserMemory memory{};
};

/// Two switches, both off; nothing in the product turns them on.
struct BrowserSwitches {
  /// Each event of the server is shown in a message box.
  bool eventEcho = false;
  /// Chooses the options of the connection, see browserOptions().
  bool connectionOption = false;
};

/// The dialog through which a server and one of its audit databases are chosen. Lists servers when it is shown.
class frmSQLServerBrowser final : public QDialog {
  Q_OBJECT

 public:
  frmSQLServerBrowser(const ServerBrowserContext& context, QWidget* owner);
  ~frmSQLServerBrowser() override;

  /// Places everything for a splitter at `x`, kept between its limits.
  void SizeControls(Twips x);

  void done(int result) override;

  /// The place of the splitter, as SizeControls() takes it.
  [[nodiscard]] Twips splitter() const { return splitter_; }

  BrowserSwitches switches;

 protected:
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildViewBar();
  void buildRightPane();
  void buildSplitter();
  void buildFoot(const BrowserMemory& memory);
  void buildRecent(const BrowserMemory& memory);

  void Form_Load();
  void Form_Unload();
  void Form_Resize();
  void DisplayServers();
  void ServerLocation_Click();
  void SmartViewBar_ItemClick();
  void SmartViewBar_SelectionMove();
  void txtServer_Enter();
  void cmdOK_Click();
  void btRecent_Choice(const BrowserMemory::Database& database);
  void oSQLServer_Event(const ServerEvent& event);

  void imgSplitterV_MouseDown();
  void imgSplitterV_MouseMove(int x);
  void imgSplitterV_MouseUp();
  [[nodiscard]] int withinLimits(int x) const;
  /// The header of the list and one row of it.
  [[nodiscard]] int minListHeight() const;
  /// Height of the pane on the right for all its elements, the explaining text included.
  [[nodiscard]] int minPaneHeight(int width) const;

  /// A new server object in the place of the one before.
  void openServerObject();
  enum class Listing { done, failed, stopped };
  /// Lists something with a new server object on a worker thread: windows are painted meanwhile, Esc stops it, and
  /// nothing else happens. The dialog may be gone afterwards.
  template <typename Result>
  Listing list(const std::function<Result(ServerDirectory&)>& ask, Result& result, std::optional<Error>& failure);
  void clearDatabases();
  void reportFailure(const QString& sentence, const Error& error);
  void say(const QString& text);
  [[nodiscard]] QString ownText(std::string_view key, const QString& first = {}, const QString& second = {}) const;
  /// Enter in the line or on its button enters the typed name instead of pressing the dialog's default button.
  bool enterTyped(const QEvent& event);
  /// The first arrow key in a list without a selected row selects its first row, not the one after it.
  bool startInList(const QEvent& event);

  ConnectionState& connection_;
  const settings::LanguageOffset& language_;
  std::shared_ptr<ui::DialogServices> services_;
  std::function<std::unique_ptr<ServerDirectory>()> openDirectory_;
  std::shared_ptr<ServerDirectory> oSQLServer_;  // shared: a stopped listing may still use it
  QStandardItemModel databases_;

  db::SmartViewBar* SmartViewBar_ = nullptr;
  QWidget* rightPane_ = nullptr;
  QLabel* lblInfo_ = nullptr;
  std::array<QRadioButton*, 2> ServerLocation_{};
  QLineEdit* txtServer_ = nullptr;
  QToolButton* btServer_ = nullptr;
  ui::ResultTable* lvListView_ = nullptr;
  QWidget* imgSplitterV_ = nullptr;
  QWidget* picSplitterV_ = nullptr;
  QWidget* Controlspic_ = nullptr;
  QPushButton* btRecent_ = nullptr;  ///< only where there are recent databases
  QPushButton* cmdOK_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
  QStatusBar* StatusBar1_ = nullptr;

  Twips splitter_;
  bool loaded_ = false;
  bool dragging_ = false;
  /// How often the window was enlarged since its size was last large enough.
  int enlargements_ = 0;
  bool listing_ = false;
};

}  // namespace korvel::db
