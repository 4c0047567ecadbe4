#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>
#include <map>
#include <memory>
#include <optional>

#include "control/library_state.h"
#include "korvel/AuditViewer.h"
#include "settings/settings_backend.h"
#include "tests/control/canned_connection.h"
#include "tests/control/recorder.h"

namespace korvel::test {

/// Settings in memory: one value, or a store that cannot be opened.
class MemorySettings final : public settings::SettingsBackend {
 public:
  struct Content {
    std::map<std::string, std::string> values;
    Win32Error openFailure = Win32Error::success;
    std::string file;
    /// The contents of the store after any write.
    std::optional<std::string> storesInstead;
  };
  explicit MemorySettings(Content& content) : content_(content) {}
  Win32Error openForReading(const std::string& keyPath, std::unique_ptr<settings::SettingsKey>& key) override;
  Win32Error createOrOpen(const std::string& keyPath, std::unique_ptr<settings::SettingsKey>& key) override {
    return openForReading(keyPath, key);
  }
  [[nodiscard]] std::string file() const override { return content_.file; }

 private:
  Content& content_;
};

/// A separate environment for each test: new library state, recorded dialogs, settings in memory, a scripted server.
class ViewerTest : public ::testing::Test {
 protected:
  ViewerTest();
  ~ViewerTest() override;

  /// A control as a host creates it for a new form, not yet shown.
  std::unique_ptr<AuditViewer> newViewer();
  /// A control that is shown and has selected the database of server "S".
  std::unique_ptr<AuditViewer> shownViewer();

  template <typename Element = QWidget>
  static Element* element(const AuditViewer& viewer, const QString& name) {
    auto* found = viewer.findChild<Element*>(name);
    if (found == nullptr) ADD_FAILURE() << "no element " << name.toStdString();
    return found;
  }
  static void click(AuditViewer& viewer, const QString& button) { element<QAbstractButton>(viewer, button)->click(); }
  static QTableView* list(const AuditViewer& viewer, int index) {
    return element<QTableView>(viewer, QStringLiteral("lvListView%1").arg(index));
  }
  static QString statusPanel(const AuditViewer& viewer) { return element<QLabel>(viewer, "Status")->text(); }
  static QString recordsPanel(const AuditViewer& viewer) { return element<QLabel>(viewer, "Records")->text(); }
  /// Number, colon and text of the last failure, empty where there is none.
  static QString lastFailure(const AuditViewer& viewer) {
    if (!viewer.LastFailureTime().isValid()) return viewer.LastFailureText();
    return QString::number(viewer.LastFailureNumber()) + ':' + viewer.LastFailureText();
  }
  static void selectTab(const AuditViewer& viewer, int index) {
    element<QTabWidget>(viewer, "SSTab1")->setCurrentIndex(index);
  }
  /// The tree as text: one line a node, "[x]" or "[ ]" and the caption, children indented.
  static QString treeText(const AuditViewer& viewer);
  /// Custom queries are answered with two columns, "a" and "b", and a row.
  void answerWithOneRow();
  /// One column of a list as it is shown, joined by blanks.
  static QString column(const AuditViewer& viewer, int listIndex, int columnIndex = 0);
  static QTreeWidgetItem* node(const AuditViewer& viewer, const QString& path);

  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  MemorySettings::Content settings;
  CannedServer server;

 private:
  control::Platform realPlatform_;
};

}  // namespace korvel::test
