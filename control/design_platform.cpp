#include "control/design_platform.h"

#include "base/error.h"
#include "korvel/ViewerApplication.h"
#include "output/pages/report_sheets.h"

namespace korvel {
namespace control {
namespace {

class NoServices final : public ControlServices {
 public:
  void messageBox(QWidget*, ui::MessageIcon, const QString&, const QString&) override {}
  std::optional<QFont> chooseFont(QWidget*, const QFont&) override { return std::nullopt; }
  std::optional<QString> chooseFolder(QWidget*, const QString&, bool) override { return std::nullopt; }
  std::optional<QString> chooseFile(QWidget*, const QString&, const QString&, ui::ChosenFile) override {
    return std::nullopt;
  }
  QString inputBox(QWidget*, const QString&, const QString&) override { return {}; }
  bool confirm(QWidget*, const QString&, const QString&) override { return false; }
  std::optional<std::size_t> choose(QWidget*, const QString&, const QString&, const QStringList&) override {
    return std::nullopt;
  }
  [[nodiscard]] bool hasForm(const QString&) const override { return true; }
  void showForm(QWidget*, const QString&) override {}
  void setPointer(ui::Pointer) override {}
  void openHelp(QWidget*, const QString&, HelpCommand) override {}
  void openHelpTopic(QWidget*, const QString&, const QString&) override {}
  void startEditor(const QString&) override {}
  bool choosePrinter(QWidget*, QPrinter&) override { return false; }
  bool showPreview(QWidget*, std::unique_ptr<output::pages::ReportSheets>) override { return false; }
};

class ForgettingKey final : public settings::SettingsKey {
 public:
  Win32Error querySize(const std::string&, std::uint32_t&, std::uint32_t&) override { return Win32Error::fileNotFound; }
  Win32Error queryData(const std::string&, std::vector<char>&) override { return Win32Error::fileNotFound; }
  Win32Error setString(const std::string&, const std::string&) override { return Win32Error::success; }
};

class NoSettings final : public settings::SettingsBackend {
 public:
  Win32Error openForReading(const std::string&, std::unique_ptr<settings::SettingsKey>&) override {
    return Win32Error::fileNotFound;
  }
  Win32Error createOrOpen(const std::string&, std::unique_ptr<settings::SettingsKey>& key) override {
    key = std::make_unique<ForgettingKey>();
    return Win32Error::success;
  }
};

class NoServers final : public db::ServerDirectory {
 public:
  std::vector<std::string> networkServers() override { return {}; }
  std::vector<std::string> localServers() override { return {}; }
  std::vector<db::DatabaseInfo> databases(const std::string&, const db::BrowserOptions&) override { return {}; }
};

std::unique_ptr<db::Connection> refuse(std::string_view /*connectionString*/, const std::stop_token& /*stop*/) {
  throw Error(unspecifiedFailure, "a form that is being drawn has no database");
}

}  // namespace

Platform designPlatform() {
  Platform platform;
  platform.services = std::make_shared<NoServices>();
  platform.openSettings = [] { return std::make_unique<NoSettings>(); };
  platform.connect = &refuse;
  platform.openDirectory = [] { return std::make_unique<NoServers>(); };
  platform.selectsDefaultServer = false;
  return platform;
}

}  // namespace control

void useDesignMode() {
  control::platform() = control::designPlatform();
}

}  // namespace korvel
