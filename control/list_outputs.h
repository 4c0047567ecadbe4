#pragma once

#include <QString>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "control/output_manifest.h"
#include "evidence/manifest.h"
#include "output/byte_sink.h"
#include "results/result_list.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class CommandPopup;
class MessageBoxes;
class Surface;
struct PrintedList;

/// Adds the outputs of the list in front to its context menu: preview, exports.
void addOutputEntries(CommandPopup& menu, AuditViewer& viewer, const MessageBoxes& messages);

/// Outputs of the current list: text export, exchange file, printed or previewed report.
class ListOutputs {
 public:
  /// All must outlive the outputs.
  ListOutputs(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers);
  ListOutputs(const ListOutputs&) = delete;
  ListOutputs& operator=(const ListOutputs&) = delete;

  [[nodiscard]] QString GetExportPath(const QString& dialogtext, int files);
  void ExportNotepad();
  void ExportExcel();
  /// The report as btPrint_Click has it, in the preview instead of on paper.
  void PreviewReport();
  void btExcel_Click();
  void btPrint_Click();

 private:
  /// Writes a list in a fixed layout; gives the number of characters that the file does not hold.
  using ListWriter = std::size_t (*)(const results::ResultList& list, const output::ByteSink& file,
                                     const output::RowProgress& progress);

  /// The rows that an output takes, and what is said of them.
  struct OutputRows {
    /// Of the list in front, or a copy of it without its filters.
    std::shared_ptr<const results::ResultList> list;
    /// In the language of the moment when it is said; none where nothing is filtered.
    std::function<QString()> remark;
    /// What an output of them says of itself.
    evidence::Manifest manifest;
  };
  /// Rows of the list in front.
  [[nodiscard]] OutputRows outputRows(std::shared_ptr<const results::ResultList> list, const TakenRows& taken,
                                      std::function<QString()> remark = {}) const;
  /// Asks which rows are to be put out where the current list is filtered; nothing where the user gives no answer.
  [[nodiscard]] std::optional<OutputRows> askForRows();
  /// Whether the list has rows; says so where it has none.
  bool hasSomethingToExport(const results::ResultList& list);
  /// The steps that both exports share; `place` gives the file's path, `open` comes when the file is there and the
  /// status panel says so.
  void exportList(const OutputRows& rows, const std::function<std::filesystem::path()>& place,
                  const std::string& format, ListWriter write,
                  const std::function<void(const QString& file)>& open = {});
  [[nodiscard]] PrintedList printedList(const OutputRows& rows, const std::string& caption) const;
  void writeReport();
  void WebBrowser1_DocumentComplete();

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AnswerStatus& answers_;
  /// What was said of the rows of the last report.
  std::function<QString()> reportRemark_;
};

}  // namespace korvel::control
