#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "evidence/manifest.h"
#include "output/pages/report_pages.h"
#include "output/report_notes.h"
#include "output/report_reader.h"
#include "results/result_list.h"

namespace korvel::control {

/// Commands of ExecWB by their standard numbers.
enum class ReportCommand { print = 6, printPreview = 7 };
/// How ExecWB runs a command.
enum class ExecOption { doDefault = 0, promptUser = 2 };

/// What a report says of itself beside its pages.
struct ReportOrigin {
  evidence::Manifest manifest;
  /// The rows of the report; null where a file that it is printed into gets no manifest.
  std::shared_ptr<const results::ResultList> rows;
};

/// The component `WebBrowser1`: takes a report file, signals when it is loaded, and prints or previews it. It reads
/// only our own reports, by the notes of their writer: nothing in them is run, opened or fetched.
class ReportViewer final : public QObject {
  Q_OBJECT

 public:
  /// Dialogs belong to `owner`, which also owns the viewer.
  explicit ReportViewer(QWidget& owner);
  ~ReportViewer() override;

  /// Takes the report file; DocumentComplete follows when the event loop runs next, once, also where Navigate is called
  /// again before.
  /// `remark` is printed at the head of its pages.
  void Navigate(const QString& path, output::ReportNotes notes, const QString& remark = {}, ReportOrigin origin = {});
  /// Prints, after the print dialog with promptUser, or shows the preview. A cancelled dialog does nothing. Throws
  /// Error: the file cannot be read or is not the one that was written, the printer does not take it.
  void ExecWB(ReportCommand command, ExecOption option);

 Q_SIGNALS:
  void DocumentComplete(const QString& path);
  /// The report was printed into a file that has a manifest beside it.
  void ProvenFileWritten(const QString& file);

 private:
  /// The report's reader, after the whole file was checked against its notes.
  [[nodiscard]] std::unique_ptr<output::ReportReader> openReport() const;
  [[nodiscard]] output::pages::PageTexts pageTexts() const;
  void print(ExecOption option);
  void preview();

  QWidget& owner_;
  QString path_;
  output::ReportNotes notes_;
  QString remark_;
  ReportOrigin origin_;
  bool announced_ = false;
};

}  // namespace korvel::control
