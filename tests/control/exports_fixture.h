#pragma once

#include <QProgressBar>
#include <filesystem>
#include <string>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "tests/control/command_surfaces.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

/// Outputs go into a folder of the test, named by "windir".
class Outputs : public CommandTest {
 protected:
  /// A viewer whose custom page shows rows of three columns A, B and C.
  std::unique_ptr<AuditViewer> viewerWith(const std::vector<std::array<std::string, 3>>& rows) {
    auto viewer = shownViewer();
    selectTab(*viewer, 5);
    server.answer = [rows](db::ResultSink& sink) {
      const std::vector<db::Field> fields{{"A"}, {"B"}, {"C"}};
      sink.beginResult(fields);
      for (const auto& row : rows) {
        const std::array<db::Cell, 3> cells{{{row[0]}, {row[1]}, {row[2]}}};
        if (!sink.row(cells)) return;
      }
      sink.endResult();
    };
    click(*viewer, "btQuery");
    return viewer;
  }
  /// By UTF-8 names below the folder.
  [[nodiscard]] std::string written(const std::string& name) const { return readFile(folder / pathFromUtf8(name)); }
  [[nodiscard]] QString path(const std::string& name) const {
    return QString::fromStdString(utf8FromPath(folder / pathFromUtf8(name)));
  }
  [[nodiscard]] bool folderIsEmpty() const { return std::filesystem::is_empty(folder.path()); }
  [[nodiscard]] int filesInFolder() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) count += entry.exists() ? 1 : 0;
    return count;
  }
  static QProgressBar* progressBar(const AuditViewer& viewer) { return element<QProgressBar>(viewer, "ProgressBar1"); }

  TemporaryFolder folder;
  EnvironmentVariable windir{"windir", utf8FromPath(folder.path())};
};

class TextExport : public Outputs {};

class SpreadsheetExport : public Outputs {
 protected:
  SpreadsheetExport() { recorder->chosenFolder = QString::fromStdString(utf8FromPath(folder.path())); }
};

}  // namespace korvel::test
